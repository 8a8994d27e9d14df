#pragma once

#include "driverhost/Check.h"
#include "driverhost/Coverage.h"
#include "driverhost/Hints.h"
#include "driverhost/Life.h"
#include "driverhost/Output.h"
#include "driverhost/Session.h"
#include "driverhost/Traffic.h"
#include "driverhost/Verdict.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace driverhost {

// Keeps the records of a step as JSON texts without their steps.
class RecordCollector : public TrafficSink {
 public:
  void OnStep(unsigned long, const Step&) override { records.clear(); }
  void OnRecord(const Record& record) override { records.push_back(JsonText(record)); }

  std::vector<std::string> records;
};

// One case, in a process of its own. Says on standard output whether the traffic was as expected.
class CaseRun {
 public:
  // Everything is borrowed and outlives the object. Throws SessionError for a case that cannot be
  // read.
  CaseRun(const CheckOptions& options, const std::string& path, const standin::Plugin& plugin,
          const LifeOptions& life, Output& output);

  // Runs once. Returns the exit status for this case.
  int Run();

  const nlohmann::ordered_json& Covered() const { return m_Coverage.Counts(); }

 private:
  struct Line {
    unsigned long number;
    LineKind kind;
    bool tooLong;
    std::string text;
  };

  void Play();

  // The records that stand after the line at that place, up to the next step.
  std::vector<std::string_view> ExpectedAfter(std::size_t place) const;

  void Compare(std::size_t place, const std::vector<std::string_view>& expected);
  void CheckRecords(std::size_t place) const;
  void Update();

  const CheckOptions& m_Options;
  Output& m_Output;
  Session m_Session;
  std::vector<Line> m_Lines;                     // the first stands for creation and has no text
  std::vector<std::vector<std::string>> m_Came;  // after each line
  Verdict m_Verdict;
  Traffic m_Traffic;
  Life m_Life;
  Hints m_Hints;
  Coverage m_Coverage;
  RecordCollector m_Collector;
  std::size_t m_Steps = 0;
  std::size_t m_Records = 0;
  bool m_Differs = false;
};

}  // namespace driverhost
