#include "driverhost/run/DriverRun.h"

#include "driverhost/run/Stack.h"
#include "driverhost/text/EndOfProcess.h"
#include "session/Legible.h"
#include "session/WriteLine.h"

#include <boost/asio/post.hpp>
#include <nlohmann/json.hpp>

#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <exception>
#include <iterator>
#include <utility>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t s_MostOwed = 256;
constexpr std::size_t s_MostOwedBytes = std::size_t{4} << 20U;
// What a driver may cause in one step.
constexpr std::size_t s_MostRecords = 65536;
constexpr std::size_t s_MostBytes = std::size_t{1} << 30U;
constexpr std::size_t s_MostNames = 10000;
constexpr std::size_t s_MostBindings = 1000;
constexpr std::size_t s_LongestText = 2000;  // columns of what a driver says of itself
constexpr std::chrono::milliseconds s_ForUnread{10};
constexpr std::chrono::milliseconds s_ForStack{2000};

constexpr std::string_view s_Over = R"({"over":true})";

bool IsRestart(const Step& step) {
  return std::holds_alternative<session::Restart>(step.line.action);
}

}  // namespace

DriverRun::DriverRun(Loop& loop, const DriverProcessOptions& options, double seconds,
                     Traffic& traffic, Verdict& verdict, Console& console,
                     std::function<void()> onProgress)
    : m_Loop(loop),
      m_Options(options),
      m_Seconds(seconds),
      m_Traffic(traffic),
      m_Verdict(verdict),
      m_Console(console),
      m_OnProgress(std::move(onProgress)),
      m_Timer(loop.Context()) {}

void DriverRun::Start(const session::Start& start) {
  m_Start = start;
  StartProcess();
  session::Line creation;
  creation.action = start;
  Owe(std::move(creation), 0);
}

void DriverRun::StartProcess() {
  m_OwedSince = Clock::now();
  m_Phase = Phase::Loading;
  DriverProcess::Events events;
  events.onLine = [this](std::string_view line) { OnLine(line); };
  events.onPause = [this] { OnPause(); };
  events.onPrinted = [this](std::string_view line, bool output) { OnPrinted(line, output); };
  events.onExit = [this](int status) { OnExit(status); };
  m_Process.emplace(m_Loop, m_Options, std::move(events));
  session::Line creation;
  creation.action = m_Start;
  m_Process->Send(session::WriteLine(creation));
}

bool DriverRun::HasRoom() const {
  const bool restarts = !m_Owed.empty() && IsRestart(m_Owed.back());
  return m_Owed.size() < s_MostOwed && m_OwedBytes < s_MostOwedBytes && !restarts;
}

void DriverRun::Deliver(Step step) {
  if (!m_TakesLines || m_Destroying) return;
  if (!std::holds_alternative<session::Rooms>(step.line.action)) ++m_Messages;
  const bool restarts = IsRestart(step);
  std::string text = step.line.files.empty() ? step.text : session::WriteLine(step.line);
  Owe(std::move(step));
  if (!restarts) m_Process->Send(std::move(text));
}

void DriverRun::End(unsigned long number) {
  if (std::exchange(m_Destroying, true) || m_HasEnded) return;
  const bool restarts = !m_Owed.empty() && IsRestart(m_Owed.back());
  if (m_TakesLines) Owe({}, number);
  if (!restarts) m_Process->EndInput();
}

void DriverRun::Owe(session::Line line, unsigned long number) {
  Step step;
  step.line = std::move(line);
  step.number = number;
  Owe(std::move(step));
}

void DriverRun::Owe(Step step) {
  m_OwedBytes += step.text.size();
  m_Owed.push_back(std::move(step));
  if (m_Owed.size() > 1) return;
  if (m_Phase != Phase::Loading) BeginStep();
  m_OwedSince = Clock::now();
  StartTimer();
}

void DriverRun::BeginStep() {
  m_HasBegun = true;
  m_RecordsOfStep = 0;
  m_BytesOfStep = 0;
  m_OwedSince = Clock::now();
  m_Owed.front().at = SecondsSinceStart();
  const auto known = m_LastReads.find(NameOfMessage(m_Owed.front().line.action));
  m_Reads = known == m_LastReads.end() ? Reads() : known->second;
  m_Traffic.OnStep(m_Owed.front());
  if (IsRestart(m_Owed.front())) ContinueRestart();
}

// Each part of a restart ends as a step does.
void DriverRun::ContinueRestart() {
  switch (m_Restart) {
    case Restart::None:
      m_Restart = Restart::Asking;
      m_Start.state.reset();
      return m_Process->Send(R"({"persist":true})");
    case Restart::Asking:
      m_Restart = Restart::Destroying;
      return m_Process->EndInput();
    case Restart::Destroying:
      m_Phase = Phase::Unloading;
      return;
    case Restart::Creating:
      m_Restart = Restart::Binding;
      m_HostLinesOwed = m_HostState.size();
      for (const session::Line& line : m_HostState) m_Process->Send(session::WriteLine(line));
      if (m_HostLinesOwed > 0) return;
      break;
    case Restart::Binding:
      if (--m_HostLinesOwed > 0) return;
      break;
  }
  m_Restart = Restart::None;
  if (m_Destroying) m_Process->EndInput();
  FinishStep();
}

// Bindings and rooms are the host's, and outlive the driver.
void DriverRun::RememberForRestart(const session::Line& line) {
  const auto forget = [this](const auto& isReplaced) { std::erase_if(m_HostState, isReplaced); };
  const auto forgetBinding = [&forget](unsigned long id) {
    forget([id](const session::Line& kept) {
      const auto* bind = std::get_if<session::Bind>(&kept.action);
      return bind && bind->id == id;
    });
  };
  const auto* bind = std::get_if<session::Bind>(&line.action);
  const auto* unbind = std::get_if<session::Unbind>(&line.action);
  const bool rooms = std::holds_alternative<session::Rooms>(line.action);
  if (bind) forgetBinding(bind->id);
  if (unbind) forgetBinding(unbind->id);
  if (rooms)
    forget([](const auto& kept) { return std::holds_alternative<session::Rooms>(kept.action); });
  if ((bind || rooms) && m_HostState.size() < s_MostBindings) m_HostState.push_back(line);
}

void DriverRun::EndStep() {
  if (m_Owed.empty() || !m_HasBegun) return OnNonsense();
  m_OwedSince = Clock::now();
  if (m_Restart != Restart::None) return ContinueRestart();
  RememberForRestart(m_Owed.front().line);
  FinishStep();
}

void DriverRun::FinishStep() {
  m_Traffic.OnStepEnd(m_Owed.front(), m_Reads);
  m_HasBegun = false;
  if (std::holds_alternative<session::Destroy>(m_Owed.front().line.action)) {
    m_Phase = Phase::Unloading;
  }
  m_OwedBytes -= m_Owed.front().text.size();
  m_Last = std::move(m_Owed.front());
  m_Owed.pop_front();
  if (!m_Owed.empty()) BeginStep();
}

void DriverRun::OnLine(std::string_view line) {
  if (!m_HandlingSince) m_HandlingSince = Clock::now();
  const bool stack = line.starts_with(R"({"stack":)");
  if (line.empty() || (m_Told && !stack)) return;
  if (line == s_Over) return EndStep();
  try {
    line.starts_with(R"({"to":)") ? OnRecord(line) : OnReport(line);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    OnNonsense();
  }
}

void DriverRun::OnPause() {
  m_Console.Flush();
  m_OnProgress();
  const auto now = Clock::now();
  if (m_HandlingSince) m_OwedSince = std::min(now, m_OwedSince + (now - *m_HandlingSince));
  m_HandlingSince.reset();
}

void DriverRun::OnRecord(std::string_view line) {
  if (m_Owed.empty() || !m_HasBegun) return OnNonsense();
  m_BytesOfStep += line.size();
  if (++m_RecordsOfStep > s_MostRecords || m_BytesOfStep > s_MostBytes) {
    Tell("the driver sent more than " + std::to_string(m_RecordsOfStep - 1) + " records " +
         Where());
    return m_Process->Kill();
  }
  const session::Record record{std::string(line)};
  if (m_Restart == Restart::Asking && record.Kind() == session::To::State) {
    m_Start.state = record.Text("xml");
  }
  m_Traffic.OnRecord(m_Owed.front(), record);
}

void DriverRun::OnReport(std::string_view line) {
  const Json report = Json::parse(line);
  const std::string kind = report.begin().key();
  const Json& value = report.front();
  if (kind == "stack") {
    m_Stack = value.get<std::string>();
    m_Maps = report.at("maps").get<std::string>();
    m_Signal = std::stoi(report.at("signal").get<std::string>(), nullptr, 16);
  } else if (kind == "loaded") {
    m_Phase = Phase::Running;
    if (m_Restart == Restart::None) BeginStep();
  } else if (kind == "unloaded") {
    m_Phase = Phase::Unloaded;
  } else if (kind == "registered") {
    m_Traffic.OnRegistered(value.get<std::vector<std::string>>());
  } else if (kind == "reads") {
    m_Reads.clear();
    for (const auto& [name, has] : value.get<std::vector<std::pair<std::string, bool>>>()) {
      m_Reads.push_back({name, has});
    }
    if (m_LastReads.size() < s_MostNames) {
      m_LastReads[NameOfMessage(m_Owed.at(0).line.action)] = m_Reads;
    }
  } else if (kind == "label") {
    m_Traffic.OnLabel(report.at("event").get<unsigned long>(), value.get<std::string>());
  } else if (kind == "hint") {
    m_Traffic.OnHint(m_Owed.empty() ? m_Last : m_Owed.front(),
                     session::Legible(value.get<std::string>(), s_LongestText));
  } else if (kind == "misuse") {
    m_Verdict.FailDriver(Where() + ": " +
                         session::Legible(value.get<std::string>(), s_LongestText));
  } else if (kind == "thrown") {
    OnThrown(value.get<std::string>());
  } else if (kind == "held") {
    m_Verdict.FailDriver("still held after the driver's destruction: " + value.get<std::string>());
  } else if (kind == "objects") {
    m_ObjectsHeld = value.get<std::string>();
  } else if (kind == "failed") {
    Tell(session::Legible(value.get<std::string>(), s_LongestText));
  } else {
    OnNonsense();
  }
}

// The process destroys the driver next, whatever lines are on their way to it.
void DriverRun::OnThrown(const std::string& what) {
  m_Verdict.FailDriver("the driver threw " + Where() + ": " +
                       session::Legible(what, s_LongestText));
  if (m_Owed.empty()) return;
  m_Restart = Restart::None;
  StopTakingLines();
  if (std::holds_alternative<session::Destroy>(m_Owed.front().line.action)) return;
  Owe({}, m_Owed.front().number + 1);
}

void DriverRun::StopTakingLines() {
  m_TakesLines = false;
  if (m_Owed.size() > 1) m_Owed.erase(std::next(m_Owed.begin()), m_Owed.end());
  m_OwedBytes = m_Owed.empty() ? 0 : m_Owed.front().text.size();
}

void DriverRun::OnNonsense() {
  Tell("the driver's process says what means nothing " + Where());
  m_Process->Kill();
}

void DriverRun::OnPrinted(std::string_view line, bool output) {
  const Step& step = m_Owed.empty() ? m_Last : m_Owed.front();
  const std::string text = session::Legible(line, s_LongestText);
  m_Console.Tell("driver: " + text);
  m_Traffic.OnPrinted(step, text);
  if (output) m_Traffic.OnHint(step, "the driver writes to standard output");
}

std::string DriverRun::Where() const {
  switch (m_Phase) {
    case Phase::Loading:
      return "while it was loaded";
    case Phase::Unloading:
      return "while it was unloaded";
    case Phase::Unloaded:
      return "after its destruction";
    case Phase::Running:
      break;
  }
  if (m_Owed.empty()) return "between two steps";
  return "in step " + std::to_string(m_Owed.front().number) + ", " +
         session::TitleOf(m_Owed.front().line.action);
}

// Only the first reason counts.
void DriverRun::Tell(const std::string& what) {
  if (std::exchange(m_Told, true)) return;
  m_TakesLines = false;
  m_Why = what;
  m_Verdict.FailDriver(what);
}

void DriverRun::OnExit(int status) {
  m_Timer.cancel();
  // A sanitizer ends by itself what a signal has told.
  if (m_Signal > 0 && WIFEXITED(status)) status = m_Signal;
  const bool farewell = m_Phase == Phase::Unloaded && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  if (!farewell && !m_Told) {
    Tell((IsCrash(status) ? "the driver crashed (" : "the driver ended its process (") +
         EndOfProcess(status) + ") " + Where());
  }
  if (farewell && m_Restart == Restart::Destroying && !m_Told) {
    m_Restart = Restart::Creating;
    return boost::asio::post(m_Loop.Context(), [this] { StartProcess(); });
  }
  for (const std::string& frame : StackLines(m_Stack, m_Maps, m_Options.program)) {
    m_Console.Tell("  at " + frame);
  }
  StopTakingLines();
  m_Owed.clear();
  m_HasEnded = true;
  m_Traffic.OnEnd(m_Why);
  m_Console.Flush();
  m_OnProgress();
}

void DriverRun::StartTimer() {
  if (m_Seconds <= 0) return;
  m_Timer.expires_at(m_OwedSince + std::chrono::duration_cast<Clock::duration>(
                                       std::chrono::duration<double>(m_Seconds)));
  m_Timer.async_wait([this](const boost::system::error_code& error) {
    if (!error) OnTimer();
  });
}

void DriverRun::OnTimer() {
  const bool owes = !m_Owed.empty() || m_Phase == Phase::Unloading || m_Phase == Phase::Unloaded;
  if (m_HasEnded || !owes) return;
  const auto left = m_OwedSince + std::chrono::duration<double>(m_Seconds) - Clock::now();
  if (left.count() > 0) return StartTimer();
  if (m_Process->HasUnread()) {
    m_OwedSince += s_ForUnread;
    return StartTimer();
  }
  char seconds[40];
  std::snprintf(seconds, sizeof seconds, "%g s ", m_Seconds);
  Tell("the driver did not return within " + std::string(seconds) + Where());
  m_Process->Signal(SIGABRT);  // it reports its stack and ends
  m_Timer.expires_after(s_ForStack);
  m_Timer.async_wait([this](const boost::system::error_code& error) {
    if (!error) m_Process->Kill();
  });
}

}  // namespace driverhost
