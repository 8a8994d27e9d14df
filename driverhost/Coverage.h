#pragma once

#include "driverhost/Life.h"
#include "driverhost/Traffic.h"

#include <nlohmann/json.hpp>

#include <string>

namespace driverhost {

// Counts what a session delivers of all that a driver has registered. As JSON, an object with an
// object for each kind, in the order of registration:
//   {"notification": {"NEW_LIST": {"delivered": 3, "read": {"title": 2}}}, "command": ...}
// "read" says how often a parameter that the handler reads was there.
class Coverage : public TrafficSink {
 public:
  // Borrowed; outlives the object.
  explicit Coverage(const Life& life) : m_Life(life) {}

  void OnStep(unsigned long number, const Step& step) override;
  void OnRead(const std::string& parameter, bool has) override;
  void OnRecord(const Record& record) override;

  const nlohmann::ordered_json& Counts() const { return m_Counts; }

 private:
  void Register();
  void CountName(const char* kind, const std::string& name);

  const Life& m_Life;
  nlohmann::ordered_json m_Counts = nlohmann::ordered_json::object();
  std::string m_Notification;  // that is being delivered
};

// Adds the counts of one case to those of others.
void AddCounts(nlohmann::ordered_json& all, const nlohmann::ordered_json& more);

// The counts as a table for a reader.
std::string CoverageTable(const nlohmann::ordered_json& counts);

}  // namespace driverhost
