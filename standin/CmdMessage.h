#pragma once

#include "host/ICmdMessage.h"
#include "standin/Counted.h"
#include "standin/Params.h"

#include <string>

namespace standin {

class CmdMessage final : public Counted<CmdMessage, ICmdMessage> {
 public:
  CmdMessage(std::string name, Params params);

  static const CmdMessage& Of(const ICmdMessage& message);  // as in OwnOf.h

  const std::string& Name() const { return m_Name; }
  const Params& Parameters() const { return m_Params; }

  tq::auto_com<ICmdMessage> Clone() const override;
  void AddParamText(const std::string& name, const std::string& type,
                    const std::string& value) override;
  void AddParamNumber(const std::string& name, const std::string& type,
                      unsigned long value) override;
  bool HasParam(const std::string& name) const override;
  unsigned long GetParamNumber(const std::string& name) const override;

 private:
  ~CmdMessage() = default;
  friend class Counted<CmdMessage, ICmdMessage>;

  const std::string m_Name;
  Params m_Params;
};

// The first parameter of that name, or null.
const Param* FindParam(const Params& params, const std::string& name);

// A command as XML text: <command name="RESET"><param name="ROOM_ID" type="INTEGER">5</param>
// </command>, on one line. What is read is empty when the text does not parse or is no command.
std::string WriteCommand(const CmdMessage& command);
tq::auto_com<ICmdMessage> ReadCommand(const std::string& xml);

}  // namespace standin
