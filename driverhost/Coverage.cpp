#include "driverhost/Coverage.h"

#include "driverhost/Legible.h"

#include <cstdio>
#include <sstream>
#include <variant>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

}  // namespace

// A driver registers in its constructor and when it is initialized: all of it is known in the first
// step of the session.
void Coverage::Register() {
  for (const std::string& line : m_Life.Host()->Registered()) {
    std::istringstream words(line);
    std::string kind;
    std::string name;
    words >> kind >> name;
    if (kind == "variable") words >> name;
    if (kind == "default" || kind == "binding") continue;
    m_Counts[kind][name]["delivered"] = 0UL;
    if (kind == "notification") m_Counts[kind][name]["read"] = Json::object();
  }
}

void Coverage::CountName(const char* kind, const std::string& name) {
  if (!m_Counts.contains(kind) || !m_Counts[kind].contains(name)) return;
  Json& delivered = m_Counts[kind][name]["delivered"];
  delivered = delivered.get<unsigned long>() + 1;
}

void Coverage::OnStep(unsigned long, const Step& step) {
  m_Notification.clear();
  if (step.text.empty()) return;
  if (m_Counts.empty()) Register();
  if (const auto* notify = std::get_if<Notify>(&step.call)) {
    m_Notification = notify->name;
    CountName("notification", notify->name);
  } else if (const auto* command = std::get_if<Execute>(&step.call)) {
    CountName("command", command->name);
  } else if (const auto* request = std::get_if<Request>(&step.call)) {
    CountName("request", request->name);
  }
}

void Coverage::OnRead(const std::string& parameter, bool has) {
  if (!m_Counts["notification"].contains(m_Notification)) return;
  Json& read = m_Counts["notification"][m_Notification]["read"];
  if (!read.contains(parameter)) read[parameter] = 0UL;
  if (has) read[parameter] = read[parameter].get<unsigned long>() + 1;
}

void Coverage::OnRecord(const Record& record) {
  if (record.to == Record::To::Variable && record.Text("action") == "changed") {
    CountName("variable", std::string(record.Text("name")));
  }
}

void AddCounts(Json& all, const Json& more) {
  for (const auto& [key, value] : more.items()) {
    Json& sum = all[key];
    if (value.is_number()) {
      sum = value.get<unsigned long>() + (sum.is_null() ? 0UL : sum.get<unsigned long>());
    } else {
      if (sum.is_null()) sum = Json::object();
      AddCounts(sum, value);
    }
  }
}

std::string CoverageTable(const Json& counts) {
  std::string table = "   times  name and the parameters that its handler reads\n";
  for (const auto& [kind, names] : counts.items()) {
    for (const auto& [name, row] : names.items()) {
      char head[16];
      std::snprintf(head, sizeof head, "%8lu  ", row.at("delivered").get<unsigned long>());
      table += head + kind + ' ' + Legible(name, 60) + '\n';
      if (!row.contains("read")) continue;
      std::string never;
      for (const auto& [parameter, times] : row.at("read").items()) {
        if (times == 0UL) never += ' ' + Legible(parameter, 60);
      }
      if (!never.empty()) table += "          never given:" + never + '\n';
    }
  }
  return table;
}

}  // namespace driverhost
