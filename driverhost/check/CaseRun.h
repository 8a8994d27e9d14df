#pragma once

#include "driverhost/check/CaseResult.h"
#include "driverhost/check/CheckOptions.h"
#include "driverhost/io/FileReplacement.h"
#include "driverhost/io/ImageRoot.h"
#include "driverhost/io/Loop.h"
#include "driverhost/io/Output.h"
#include "driverhost/report/Coverage.h"
#include "driverhost/report/Hints.h"
#include "driverhost/run/DriverRun.h"
#include "driverhost/run/Traffic.h"
#include "driverhost/run/Verdict.h"
#include "session/Case.h"
#include "session/CaseText.h"

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace driverhost {

// One case: plays it into a driver of its own and compares the traffic with what it expects.
class CaseRun : private TrafficSink {
 public:
  // `options` and `loop` are borrowed and outlive the object. Throws SessionError for a case that
  // cannot be read, std::runtime_error for one that shall be updated and cannot be.
  CaseRun(const CheckOptions& options, std::string path, Loop& loop);

  // Starts the driver. Throws std::runtime_error when its process cannot be started.
  void Start();

  // Whether the case has been played, or given up.
  bool HasEnded() const { return m_Run.HasEnded(); }

  // Once, after the end: updates the case if that was asked for, and says what there is to say.
  CaseResult Finish();

  const nlohmann::ordered_json& Covered() const { return m_Coverage.Counts(); }
  HeldConsole& Said() { return m_Console; }

 private:
  // Lines of the case; their places are their numbers. The first stands for creation and has no
  // text.
  struct Line {
    session::LineKind kind;
    bool tooLong;
    std::string text;
  };

  void ReadLines();
  void TakeLine(const session::LineSplitter::Line& line);
  void SendLines();
  Step ReadLine(std::size_t place) const;

  void OnStep(const Step& step) override;
  void OnRecord(const Step& step, const session::Record& record) override;
  void OnStepEnd(const Step& step, const Reads& reads) override;

  // The records that stand after the line at that place, up to the next step.
  std::vector<std::string_view> ExpectedAfter(std::size_t place) const;

  void Compare(const Step& step, std::size_t place);
  void AddDifference(CaseDifference difference);
  void CheckRecords(std::size_t place) const;
  void Update();

  const CheckOptions& m_Options;
  const std::string m_Path;
  Loop& m_Loop;
  HeldConsole m_Console;
  ImageRoot m_ImageRoot{""};
  DriverProcessOptions m_Process;
  std::optional<FileReplacement> m_File;  // what an update writes
  std::vector<Line> m_Lines;
  session::CaseRecords m_CameAfter;            // each line
  std::vector<std::string> m_Came;             // in this step
  std::map<std::string, std::size_t> m_Known;  // the places of the differences, by their words
  std::size_t m_NextPlace = 1;                 // to be sent
  std::optional<std::string> m_Wrong;          // with the line that is
  CaseResult m_Result;
  Verdict m_Verdict;
  Traffic m_Traffic;
  Hints m_Hints;
  Coverage m_Coverage;
  DriverRun m_Run;
};

}  // namespace driverhost
