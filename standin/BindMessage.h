#pragma once

#include "host/IBindMessage.h"
#include "standin/Counted.h"
#include "standin/MessageContent.h"

#include <optional>
#include <string>

namespace standin {

class BindMessage final : public Counted<IBindMessage> {
 public:
  // The content's name decides which handler gets the message. `xml` is the whole message as text;
  // without it GetXml builds the text from the name and the parameters. `fault` is XmlContent's, of
  // that text.
  BindMessage(MessageContent content, std::string command, std::optional<std::string> xml,
              const char* fault = nullptr);

  const MessageContent& Content() const { return m_Content; }
  const char* Fault() const { return m_Fault; }

  std::string GetXml() const override;
  const std::string& GetCommand() const override;
  std::string GetParamText(const std::string& name) const override;
  std::string GetParamValue(const std::string& name) const override;

 private:
  const MessageContent m_Content;
  const std::string m_Command;
  const std::optional<std::string> m_Xml;
  const char* const m_Fault;
};

}  // namespace standin
