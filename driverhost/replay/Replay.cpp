#include "driverhost/replay/Replay.h"

#include "driverhost/io/Interrupt.h"
#include "session/Case.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace driverhost {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double s_LongestWait = 1e9;  // seconds

}  // namespace

Replay::Replay(const ReplayOptions& options, Session& session, Loop& loop, DriverRun& run,
               Console& console, Verdict& verdict)
    : m_Options(options),
      m_Session(session),
      m_Loop(loop),
      m_Run(run),
      m_Console(console),
      m_Verdict(verdict) {}

void Replay::Run() {
  if (m_Options.repeat > 1) m_Session.KeepContent();
  try {
    const bool played = PlayRounds();
    if (!m_HasStarted) Start({});
    if (played && m_Options.served) {
      m_Loop.RunUntil([this] { return !m_Run.TakesLines(); });
      ForgetInterrupt();
    }
  } catch (const SessionError& error) {
    if (!m_HasStarted) Start({});
    m_Loop.RunUntil([this] { return m_Run.IsIdle() || m_Run.HasEnded(); }, true);
    m_Verdict.Fail(s_InputWrong, error.what());
  }
  m_Lines = m_Before + m_Session.Lines();
  m_Run.End(m_Lines + 1);
  m_Loop.RunUntil([this] { return m_Run.HasEnded(); }, true);
}

bool Replay::IsStopped() const {
  return Interrupted() != 0 || m_Console.Error() != 0 || (m_HasStarted && !m_Run.TakesLines());
}

bool Replay::PlayRounds() {
  for (unsigned long round = 1; PlayRound(); ++round) {
    if (round == m_Options.repeat) return true;
    m_Before += m_Session.Lines();
    m_Session.Rewind();
  }
  return false;
}

bool Replay::PlayRound() {
  m_RoundBegan = Clock::now();
  while (!IsStopped()) {
    const auto line = m_Session.NextLine();
    if (!line) return !IsStopped();
    if (!PlayLine(*line)) return false;
  }
  return false;
}

bool Replay::PlayLine(const session::LineSplitter::Line& line) {
  const session::LineKind kind = session::KindOf(line);
  if (kind == session::LineKind::Comment) ShowComment(line.text);
  if (kind != session::LineKind::Step) return true;
  Step step = m_Session.Read(line);
  const auto* start = std::get_if<session::Start>(&step.line.action);
  if (start && !m_HasStarted) return Start(*start);
  if (start && m_Before > 0) return true;
  if (start)
    throw SessionError(m_Session.Name() + ':' + std::to_string(line.number) +
                       R"(: "start" stands in the first line only)");
  if (!m_HasStarted && !Start({})) return false;
  if (!WaitFor(step)) return false;
  m_LastStep = m_Before + line.number;
  step.number = m_LastStep;
  m_Run.Deliver(std::move(step));
  return true;
}

bool Replay::Start(const session::Start& start) {
  m_HasStarted = true;
  m_Run.Start(start);
  if (m_Options.asCase || m_Options.served)
    m_Loop.RunUntil([this] { return m_Run.IsIdle() || m_Run.HasEnded(); });
  m_Console.Write(m_Comments);
  return !IsStopped();
}

// A comment stands behind the traffic of the line before it.
void Replay::ShowComment(std::string_view text) {
  if (!m_Options.asCase || m_Before > 0) return;
  if (!m_HasStarted) {
    m_Comments.append(text).append(1, '\n');
    return;
  }
  m_Loop.RunUntil([this] { return m_Run.IsIdle() || m_Run.HasEnded(); });
  m_Console.Write(std::string(text) + '\n');
}

bool Replay::WaitFor(const Step& step) {
  if (m_Options.pace > 0 && step.line.at) {
    const std::chrono::duration<double> after(
        std::min(*step.line.at / m_Options.pace, s_LongestWait));
    m_Loop.RunUntil(m_RoundBegan + std::chrono::duration_cast<Clock::duration>(after));
  }
  m_Loop.RunUntil([this] { return m_Run.HasRoom() || m_Run.HasEnded(); });
  return !IsStopped();
}

}  // namespace driverhost
