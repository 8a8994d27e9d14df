#pragma once

#include "host/ICmdMessage.h"
#include "standin/Counted.h"
#include "standin/MessageContent.h"

#include <string>

namespace standin {

class CmdMessage final : public Counted<ICmdMessage> {
 public:
  explicit CmdMessage(MessageContent content);

  const MessageContent& Content() const { return m_Content; }

  tq::auto_com<ICmdMessage> Clone() const override;
  void AddParamText(const std::string& name, const std::string& type,
                    const std::string& value) override;
  void AddParamNumber(const std::string& name, const std::string& type,
                      unsigned long value) override;
  bool HasParam(const std::string& name) const override;
  unsigned long GetParamNumber(const std::string& name) const override;

 private:
  MessageContent m_Content;
};

// A command as XML text: <command name="RESET"><param name="ROOM_ID" type="INTEGER">5</param>
// </command>, on one line. What is read is empty when the text does not parse or is no command; the
// observer hears of a text that is no document.
std::string WriteCommand(const MessageContent& command);
tq::auto_com<ICmdMessage> ReadCommand(const std::string& xml);

}  // namespace standin
