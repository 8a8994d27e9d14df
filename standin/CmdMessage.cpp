#include "standin/CmdMessage.h"

#include "host/ToString.h"
#include "standin/Messages.h"
#include "standin/OwnOf.h"
#include "standin/Services.h"
#include "standin/XmlReader.h"
#include "standin/XmlText.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace standin {

CmdMessage::CmdMessage(std::string name, Params params)
    : Counted(&Ledger::commandMessages), m_Name(std::move(name)), m_Params(std::move(params)) {}

const CmdMessage& CmdMessage::Of(const ICmdMessage& message) {
  return OwnOf<const CmdMessage>(message, "a command or request");
}

tq::auto_com<ICmdMessage> CmdMessage::Clone() const {
  if (Services::Fails(Factory::Clone)) return {};
  return MakeCommand(m_Name, m_Params);
}

void CmdMessage::AddParamText(const std::string& name, const std::string& type,
                              const std::string& value) {
  m_Params.push_back({name, value, type});
}

void CmdMessage::AddParamNumber(const std::string& name, const std::string& type,
                                unsigned long value) {
  m_Params.push_back({name, tq::ToString(value), type});
}

bool CmdMessage::HasParam(const std::string& name) const {
  return FindParam(m_Params, name) != nullptr;
}

unsigned long CmdMessage::GetParamNumber(const std::string& name) const {
  const Param* param = FindParam(m_Params, name);
  return param ? std::strtoul(param->value.c_str(), nullptr, 10) : 0;
}

tq::auto_com<ICmdMessage> MakeCommand(const std::string& name, Params params) {
  return tq::auto_com<ICmdMessage>(new CmdMessage(name, std::move(params)));
}

const Param* FindParam(const Params& params, const std::string& name) {
  const auto param = std::find_if(params.begin(), params.end(),
                                  [&name](const Param& other) { return other.name == name; });
  return param == params.end() ? nullptr : &*param;
}

std::string WriteCommand(const CmdMessage& command) {
  std::string xml = "<command";
  AppendAttribute(xml, "name", command.Name());
  xml += '>';
  for (const Param& param : command.Parameters()) {
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
  const auto read = ReadXml(xml);
  if (!read || read->elements.front().name != "command") return {};
  const std::string name = read->elements.front().Attribute("name");
  Params params;
  for (const auto& element : read->elements) {
    if (element.name != "param") continue;
    const std::string type = element.Attribute("type");
    params.push_back({element.Attribute("name"), element.text, type.empty() ? "STRING" : type});
  }
  return MakeCommand(name, std::move(params));
}

}  // namespace standin
