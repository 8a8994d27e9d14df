#include "standin/CmdMessage.h"

#include "host/ToString.h"
#include "standin/Messages.h"
#include "standin/Services.h"
#include "standin/XmlReader.h"
#include "standin/XmlText.h"

#include <cstdlib>
#include <utility>

namespace standin {

CmdMessage::CmdMessage(MessageContent content)
    : Counted(Kind::CommandMessage), m_Content(std::move(content)) {}

tq::auto_com<ICmdMessage> CmdMessage::Clone() const {
  CheckUse("ICmdMessage::Clone");
  if (Services::Fails(Factory::Clone)) return {};
  return tq::auto_com<ICmdMessage>(new CmdMessage(m_Content));
}

void CmdMessage::AddParamText(const std::string& name, const std::string& type,
                              const std::string& value) {
  CheckUse("ICmdMessage::AddParamText");
  m_Content.params.push_back({name, value, type});
}

void CmdMessage::AddParamNumber(const std::string& name, const std::string& type,
                                unsigned long value) {
  CheckUse("ICmdMessage::AddParamNumber");
  m_Content.params.push_back({name, tq::ToString(value), type});
}

bool CmdMessage::HasParam(const std::string& name) const {
  CheckUse("ICmdMessage::HasParam");
  return m_Content.ReadParam(Read::Accessor::Has, name) != nullptr;
}

unsigned long CmdMessage::GetParamNumber(const std::string& name) const {
  CheckUse("ICmdMessage::GetParamNumber");
  const Param* param = m_Content.ReadParam(Read::Accessor::Number, name);
  return param ? std::strtoul(param->value.c_str(), nullptr, 10) : 0;
}

tq::auto_com<ICmdMessage> MakeCommand(const std::string& name, Params params) {
  return tq::auto_com<ICmdMessage>(
      new CmdMessage({name, std::move(params), MessageContent::Kind::Command}));
}

std::string WriteCommand(const MessageContent& command) {
  std::string xml = "<command";
  AppendAttribute(xml, "name", command.name);
  xml += '>';
  for (const Param& param : command.params) {
    xml += "<param";
    AppendAttribute(xml, "name", param.name);
    AppendAttribute(xml, "type", param.type);
    xml += '>';
    AppendText(xml, param.value);
    xml += "</param>";
  }
  return xml += "</command>";
}

tq::auto_com<ICmdMessage> ReadCommand(const std::string& xml) {
  const auto read = ReadXmlForDriver(xml);
  if (read.fault || read.elements.front().name != "command") return {};
  Params params;
  for (const auto& element : read.elements) {
    if (element.name != "param") continue;
    const std::string type = element.Attribute("type");
    params.push_back({element.Attribute("name"), element.text, type.empty() ? "STRING" : type});
  }
  return MakeCommand(read.elements.front().Attribute("name"), std::move(params));
}

}  // namespace standin
