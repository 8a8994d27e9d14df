#include "standin/BindMessage.h"

#include "standin/CmdMessage.h"
#include "standin/XmlReader.h"
#include "standin/XmlText.h"

#include <utility>

namespace standin {

namespace {

std::vector<std::string>* s_Reads = nullptr;

}  // namespace

BindMessage::BindMessage(std::string name, std::string command, Params params, std::string xml)
    : Counted(&Ledger::bindMessages),
      m_Name(std::move(name)),
      m_Command(std::move(command)),
      m_Params(std::move(params)),
      m_Xml(std::move(xml)) {}

std::string BindMessage::GetXml() const {
  if (!m_Xml.empty()) return m_Xml;
  std::string xml = "<";
  AppendName(xml, m_Name);
  if (m_Params.empty()) return xml += "/>";
  xml += '>';
  for (const Param& param : m_Params) AppendElement(xml, param.name, param.value);
  xml += "</";
  AppendName(xml, m_Name);
  return xml += '>';
}

std::string BindMessage::GetParamText(const std::string& name) const { return Read("text", name); }

std::string BindMessage::GetParamValue(const std::string& name) const {
  return Read("value", name);
}

std::string BindMessage::Read(const char* accessor, const std::string& name) const {
  if (s_Reads) s_Reads->push_back(std::string(accessor) + ' ' + name);
  const Param* param = FindParam(m_Params, name);
  return param ? param->value : std::string();
}

void RecordReads(std::vector<std::string>* reads) { s_Reads = reads; }

tq::auto_com<IBindMessage> MakeNotification(const std::string& name, Params params) {
  return tq::auto_com<IBindMessage>(new BindMessage(name, "", std::move(params), ""));
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
  // An empty text would stand for a message that is made from its parameters.
  if (xml.empty()) xml += ' ';
  return tq::auto_com<IBindMessage>(
      new BindMessage(name, std::move(command), std::move(params), std::move(xml)));
}

}  // namespace standin
