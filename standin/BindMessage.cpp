#include "standin/BindMessage.h"

#include "standin/CmdMessage.h"
#include "standin/Messages.h"
#include "standin/OwnOf.h"
#include "standin/Services.h"
#include "standin/XmlReader.h"
#include "standin/XmlText.h"

#include <utility>

namespace standin {

BindMessage::BindMessage(std::string name, std::string command, Params params,
                         std::optional<std::string> xml)
    : Counted(&Ledger::bindMessages),
      m_Name(std::move(name)),
      m_Command(std::move(command)),
      m_Params(std::move(params)),
      m_Xml(std::move(xml)) {}

const BindMessage& BindMessage::Of(const IBindMessage& message) {
  return OwnOf<const BindMessage>(message, "a notification or bound call");
}

std::string BindMessage::GetXml() const {
  if (m_Xml) return *m_Xml;
  std::string xml = "<";
  AppendName(xml, m_Name);
  if (m_Params.empty()) return xml += "/>";
  xml += '>';
  for (const Param& param : m_Params) AppendElement(xml, param.name, param.value);
  xml += "</";
  AppendName(xml, m_Name);
  return xml += '>';
}

std::string BindMessage::GetParamText(const std::string& name) const {
  return Read(Observer::Accessor::Text, name);
}

std::string BindMessage::GetParamValue(const std::string& name) const {
  return Read(Observer::Accessor::Value, name);
}

std::string BindMessage::Read(Observer::Accessor accessor, const std::string& name) const {
  const Param* param = FindParam(m_Params, name);
  if (Services* services = Services::Current()) {
    services->observer.OnRead(m_Name, name, accessor, param ? &param->value : nullptr);
  }
  return param ? param->value : std::string();
}

const Params& ParametersOf(const IBindMessage& notification) {
  return BindMessage::Of(notification).Parameters();
}

bool IsXml(const std::string& text) { return ReadXml(text).has_value(); }

tq::auto_com<IBindMessage> MakeNotification(const std::string& name, Params params) {
  return tq::auto_com<IBindMessage>(new BindMessage(name, "", std::move(params), std::nullopt));
}

tq::auto_com<IBindMessage> MakeNotificationFromXml(const std::string& name, std::string xml) {
  std::string command;
  Params params;
  if (const auto read = ReadXml(xml)) {
    const auto& root = read->elements.front();
    if (root.name == "command") command = root.Attribute("name");
    for (std::size_t i = 1; i < read->elements.size(); ++i) {
      params.push_back({read->elements[i].name, read->elements[i].text, ""});
    }
  }
  return tq::auto_com<IBindMessage>(
      new BindMessage(name, std::move(command), std::move(params), std::move(xml)));
}

}  // namespace standin
