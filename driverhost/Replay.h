#pragma once

#include "driverhost/FileWatch.h"
#include "driverhost/Output.h"
#include "driverhost/Session.h"
#include "driverhost/Step.h"
#include "driverhost/Summary.h"
#include "driverhost/Traffic.h"
#include "standin/Host.h"
#include "standin/Plugin.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace driverhost {

enum ExitStatus : int { s_Ran = 0, s_Failed = 1, s_Wrong = 2 };

struct ReplayOptions {
  // With its separator at the end.
  std::string imageRoot;
  unsigned long id = 1;
  unsigned long repeat = 1;
};

// The life of one driver: creation, the session's lines in each round, destruction.
class Replay {
 public:
  // Everything is borrowed and outlives the object.
  Replay(const ReplayOptions& options, const standin::Plugin& plugin, Session& session,
         Traffic& traffic, Output& output);

  // Runs once. Tells what goes wrong on standard error and returns the program's exit status.
  int Run();

  const Figures& Totals() const { return m_Figures; }

 private:
  template <class Work>
  void Attempt(Work work);
  void Fail(ExitStatus status, const std::string& what);
  void FailCall(const std::string& what);

  // Whether a signal, or standard output, ends the replay before the session does.
  bool Stopped() const;

  void Create();
  void PlayRounds();
  void PlayFirstRound();
  void RunStep(const Step& step, unsigned long number);
  void BeginStep(unsigned long number, const std::string& title);
  void EndStep();
  void Destroy();
  void CheckLedger();
  void CheckOutput();

  const ReplayOptions& m_Options;
  const standin::Plugin& m_Plugin;
  Session& m_Session;
  Traffic& m_Traffic;
  Output& m_Output;
  std::unique_ptr<standin::Host> m_Host;
  std::optional<FileWatch> m_Watch;
  std::vector<Step> m_Kept;
  Figures m_Figures;
  unsigned long m_Step = 0;
  int m_Status = s_Ran;
};

}  // namespace driverhost
