#include "driverhost/report/Coverage.h"

#include "session/Legible.h"

#include <cstdio>
#include <sstream>
#include <variant>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

}  // namespace

void Coverage::OnRegistered(const std::vector<std::string>& registered) {
  for (const std::string& line : registered) {
    std::istringstream words(line);
    std::string kind;
    std::string name;
    words >> kind >> name;
    if (kind == "variable") words >> name;
    if (kind == "default" || kind == "binding" || m_Counts[kind].contains(name)) continue;
    m_Counts[kind][name]["delivered"] = 0UL;
    if (kind == "notification") m_Counts[kind][name]["read"] = Json::object();
  }
}

Json* Coverage::CountName(const char* kind, const std::string& name) {
  if (!m_Counts.contains(kind) || !m_Counts[kind].contains(name)) return nullptr;
  Json& row = m_Counts[kind][name];
  row["delivered"] = row["delivered"].get<unsigned long>() + 1;
  return &row;
}

void Coverage::CountMessage(const char* kind, const std::string& name, const Reads& reads) {
  Json* row = CountName(kind, name);
  if (!row) return;
  for (const auto& [parameter, has] : reads) {
    Json& read = (*row)["read"][parameter];
    read = (read.is_null() ? 0UL : read.get<unsigned long>()) + (has ? 1 : 0);
  }
}

void Coverage::OnStepEnd(const Step& step, const Reads& reads) {
  if (const auto* notify = std::get_if<session::Notify>(&step.line.action)) {
    CountMessage("notification", notify->name, reads);
  } else if (const auto* command = std::get_if<session::Command>(&step.line.action)) {
    CountMessage("command", command->name, reads);
  } else if (const auto* request = std::get_if<session::Request>(&step.line.action)) {
    CountMessage("request", request->name, reads);
  }
}

void Coverage::OnRecord(const Step&, const session::Record& record) {
  if (record.Kind() != session::To::Variable || record.Text("action") != "changed") return;
  CountName("variable", record.Text("name").value_or(""));
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
      table += head + kind + ' ' + session::Legible(name, 60) + '\n';
      if (!row.contains("read")) continue;
      std::string never;
      for (const auto& [parameter, times] : row.at("read").items()) {
        if (times == 0UL) never += ' ' + session::Legible(parameter, 60);
      }
      if (!never.empty()) table += "          never given:" + never + '\n';
    }
  }
  return table;
}

}  // namespace driverhost
