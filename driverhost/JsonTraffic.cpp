#include "driverhost/JsonTraffic.h"

#include "driverhost/Base64.h"
#include "driverhost/Legible.h"

#include <nlohmann/json.hpp>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

Json Text(const std::string& text) {
  if (IsUtf8(text)) return text;
  return {{"bytes", EncodeBase64(text)}};
}

Json TextOrNull(const std::string* text) { return text ? Text(*text) : Json(); }

Json List(const standin::Params& params) {
  Json list = Json::array();
  for (const standin::Param& param : params) {
    list.push_back(
        {{"name", Text(param.name)}, {"type", Text(param.type)}, {"value", Text(param.value)}});
  }
  return list;
}

void WriteLine(Output& output, const Json& object) { output.Write(object.dump() + '\n'); }

}  // namespace

void JsonTraffic::BeginStep(unsigned long number, const std::string&) { m_Step = number; }

void JsonTraffic::OnVariable(Change change, unsigned long id, const std::string& name,
                             const std::string& value) {
  WriteLine(m_Output, {{"step", m_Step},
                       {"to", "variable"},
                       {"action", ChangeText(change)},
                       {"id", id},
                       {"name", Text(name)},
                       {"value", Text(value)}});
}

void JsonTraffic::OnEvent(unsigned long id) {
  Traffic::OnEvent(id);
  WriteLine(m_Output, {{"step", m_Step}, {"to", "event"}, {"id", id}});
}

void JsonTraffic::OnUi(const std::string& xml) {
  Traffic::OnUi(xml);
  WriteLine(m_Output, {{"step", m_Step}, {"to", "ui"}, {"xml", Text(xml)}});
}

void JsonTraffic::OnRooms(const std::string& command, const standin::Params& params) {
  WriteLine(
      m_Output,
      {{"step", m_Step}, {"to", "rooms"}, {"command", Text(command)}, {"params", List(params)}});
}

void JsonTraffic::OnDevice(unsigned long binding, const std::string& command,
                           const standin::Params& params, const ICmdReturn*) {
  WriteLine(m_Output, {{"step", m_Step},
                       {"to", "device"},
                       {"binding", binding},
                       {"command", Text(command)},
                       {"params", List(params)}});
}

void JsonTraffic::OnAnswer(const std::string& request, const std::string* xml) {
  WriteLine(
      m_Output,
      {{"step", m_Step}, {"to", "answer"}, {"request", Text(request)}, {"xml", TextOrNull(xml)}});
}

void JsonTraffic::OnState(const std::string* xml) {
  WriteLine(m_Output, {{"step", m_Step}, {"to", "state"}, {"xml", TextOrNull(xml)}});
}

void JsonTraffic::OnLog(unsigned int level, const std::string& text) {
  WriteLine(m_Output, {{"step", m_Step}, {"to", "log"}, {"level", level}, {"text", Text(text)}});
}

}  // namespace driverhost
