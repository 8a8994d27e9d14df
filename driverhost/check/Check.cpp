#include "driverhost/check/Check.h"

#include "driverhost/check/CaseResult.h"
#include "driverhost/check/CaseRun.h"
#include "driverhost/check/Junit.h"
#include "driverhost/io/Interrupt.h"
#include "driverhost/replay/Session.h"
#include "driverhost/report/Coverage.h"
#include "driverhost/text/Count.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <deque>
#include <memory>
#include <stdexcept>
#include <thread>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

class Checking {
 public:
  Checking(const CheckOptions& options, Loop& loop, Console& console)
      : m_Options(options), m_Loop(loop), m_Console(console) {}

  int Run() {
    std::size_t next = 0;
    const std::size_t jobs =
        m_Options.jobs > 0 ? m_Options.jobs : std::max(1U, std::thread::hardware_concurrency());
    while (Interrupted() == 0 && (next < m_Options.cases.size() || !m_Running.empty())) {
      const auto canStart = [&] { return next < m_Options.cases.size() && Active() < jobs; };
      while (canStart()) Start(m_Options.cases[next++]);
      m_Loop.RunUntil([&] { return HasEnded(m_Running.front()) || canStart(); });
      while (!m_Running.empty() && HasEnded(m_Running.front())) TakeFirst();
    }
    return Close();
  }

 private:
  struct Running {
    std::string path;
    std::unique_ptr<CaseRun> run;  // null when the case could not be read
    HeldConsole said;
    ExitStatus status;
    Clock::time_point began;
  };

  static bool HasEnded(const Running& running) { return !running.run || running.run->HasEnded(); }

  // The first case may be a slow one: the others go on, and wait to be told.
  std::size_t Active() const {
    const auto ended = std::count_if(m_Running.begin(), m_Running.end(), &HasEnded);
    return m_Running.size() - static_cast<std::size_t>(ended);
  }

  void Start(const std::string& path) {
    Running& running = m_Running.emplace_back();
    running.path = path;
    running.began = Clock::now();
    try {
      running.run = std::make_unique<CaseRun>(m_Options, path, m_Loop);
      running.run->Start();
    } catch (const SessionError& error) {
      GiveUp(running, s_InputWrong, error.what());
    } catch (const std::runtime_error& error) {
      GiveUp(running, s_DriverFailed, std::string("driverhost: ") + error.what());
    }
  }

  static void GiveUp(Running& running, ExitStatus status, const std::string& why) {
    running.run.reset();
    running.status = status;
    running.said.Tell(why);
  }

  void TakeFirst() {
    Running& first = m_Running.front();
    CaseResult result;
    result.path = first.path;
    result.status = first.status;
    if (first.run) {
      result = first.run->Finish();
      AddCounts(m_Covered, first.run->Covered());
    }
    HeldConsole& said = first.run ? first.run->Said() : first.said;
    const double seconds = std::chrono::duration<double>(Clock::now() - first.began).count();
    m_Junit.Add(result, said.Text(), seconds);
    said.SayOn(m_Console);
    Say(result);
    ++m_Played;
    if (result.status == s_AllWell) ++m_Good;
    if (m_Status == s_AllWell) m_Status = result.status;
    m_Running.pop_front();
  }

  void Say(const CaseResult& result) {
    if (m_Options.json) {
      m_Console.Write(ResultJson(result));
    } else if (!m_Options.quiet || result.status != s_AllWell || result.updated > 0) {
      m_Console.Write(ResultText(result));
    }
    m_Console.Flush();
  }

  int Close() {
    if (m_Options.coverage) {
      m_Console.Write(m_Options.json ? m_Covered.dump() + '\n' : CoverageTable(m_Covered));
    }
    if (!m_Options.junit.empty()) m_Junit.Write(m_Options.junit);
    m_Console.Tell(Count(m_Played, "case") + ": " + std::to_string(m_Good) + " ok, " +
                   std::to_string(m_Played - m_Good) + " failed" +
                   (Interrupted() != 0 ? ", interrupted" : ""));
    return m_Status;
  }

  const CheckOptions& m_Options;
  Loop& m_Loop;
  Console& m_Console;
  std::deque<Running>
      m_Running;  // those that have ended, too, until all before them have been told
  Json m_Covered = Json::object();
  Junit m_Junit;
  std::size_t m_Played = 0;
  std::size_t m_Good = 0;
  int m_Status = s_AllWell;
};

}  // namespace

int RunCheck(const CheckOptions& options, Loop& loop, Console& console) {
  return Checking(options, loop, console).Run();
}

}  // namespace driverhost
