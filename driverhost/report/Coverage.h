#pragma once

#include "driverhost/run/Traffic.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace driverhost {

// Counts what a session delivers of all that a driver has registered. As JSON, an object with an
// object for each kind, in the order of registration:
//   {"notification": {"NEW_LIST": {"delivered": 3, "read": {"title": 2}}}, "command": ...}
// "read" says how often a parameter that the handler reads was there.
class Coverage : public TrafficSink {
 public:
  void OnRegistered(const std::vector<std::string>& registered) override;
  void OnRecord(const Step& step, const session::Record& record) override;
  void OnStepEnd(const Step& step, const Reads& reads) override;

  const nlohmann::ordered_json& Counts() const { return m_Counts; }

 private:
  void CountMessage(const char* kind, const std::string& name, const Reads& reads);

  // Returns the name's row; null when the driver has not registered it.
  nlohmann::ordered_json* CountName(const char* kind, const std::string& name);

  nlohmann::ordered_json m_Counts = nlohmann::ordered_json::object();
};

// Adds the counts of one case to those of others.
void AddCounts(nlohmann::ordered_json& all, const nlohmann::ordered_json& more);

// The counts as a table for a reader.
std::string CoverageTable(const nlohmann::ordered_json& counts);

}  // namespace driverhost
