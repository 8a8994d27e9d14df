#include "standin/BindMessage.h"

#include "standin/CheckedCast.h"
#include "standin/Messages.h"
#include "standin/XmlReader.h"
#include "standin/XmlText.h"

#include <utility>

namespace standin {

BindMessage::BindMessage(MessageContent content, std::string command,
                         std::optional<std::string> xml, const char* fault)
    : Counted(Kind::BindMessage),
      m_Content(std::move(content)),
      m_Command(std::move(command)),
      m_Xml(std::move(xml)),
      m_Fault(fault) {}

std::string BindMessage::GetXml() const {
  CheckUse("IBindMessage::GetXml");
  m_Content.ReportWhole();
  if (m_Xml) return *m_Xml;
  std::string xml = "<";
  AppendName(xml, m_Content.name);
  if (m_Content.params.empty()) return xml += "/>";
  xml += '>';
  for (const Param& param : m_Content.params) AppendElement(xml, param.name, param.value);
  xml += "</";
  AppendName(xml, m_Content.name);
  return xml += '>';
}

const std::string& BindMessage::GetCommand() const {
  CheckUse("IBindMessage::GetCommand");
  return m_Command;
}

std::string BindMessage::GetParamText(const std::string& name) const {
  CheckUse("IBindMessage::GetParamText");
  const Param* param = m_Content.ReadParam(Read::Accessor::Text, name);
  return param ? param->value : std::string();
}

std::string BindMessage::GetParamValue(const std::string& name) const {
  CheckUse("IBindMessage::GetParamValue");
  const Param* param = m_Content.ReadParam(Read::Accessor::Value, name);
  return param ? param->value : std::string();
}

const Params& ParametersOf(const IBindMessage& notification) {
  return CheckedCast<const BindMessage>(notification, "ParametersOf").Content().params;
}

bool IsXml(const std::string& text) { return !ReadXml(text).fault; }

tq::auto_com<IBindMessage> MakeNotification(const std::string& name, Params params) {
  return tq::auto_com<IBindMessage>(new BindMessage(
      {name, std::move(params), MessageContent::Kind::Notification}, "", std::nullopt));
}

tq::auto_com<IBindMessage> MakeNotificationFromXml(const std::string& name, std::string xml) {
  std::string command;
  Params params;
  const auto read = ReadXml(xml);
  for (const auto& element : read.elements) {
    if (&element != &read.elements.front()) {
      params.push_back({element.name, element.text, ""});
    } else if (element.name == "command") {
      command = element.Attribute("name");
    }
  }
  return tq::auto_com<IBindMessage>(
      new BindMessage({name, std::move(params), MessageContent::Kind::Notification},
                      std::move(command), std::move(xml), read.fault));
}

}  // namespace standin
