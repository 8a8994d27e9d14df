#include "driverhost/Replay.h"

#include "driverhost/Interrupt.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace driverhost {

namespace {

using Clock = std::chrono::steady_clock;

constexpr double s_LongestWait = 1e9;  // seconds

}  // namespace

Replay::Replay(const ReplayOptions& options, Session& session, Life& life, Output& output,
               Verdict& verdict, Wait wait, std::function<void(std::string_view)> comment)
    : m_Options(options),
      m_Session(session),
      m_Life(life),
      m_Output(output),
      m_Verdict(verdict),
      m_Wait(std::move(wait)),
      m_Comment(std::move(comment)) {}

void Replay::Run() {
  if (m_Options.repeat > 1) m_Session.Keep();
  try {
    const bool played = m_Life.Begin() && PlayRounds();
    if (played && m_Options.served) {
      m_Wait(Clock::time_point::max());
      ForgetInterrupt();
    }
  } catch (const SessionError& error) {
    m_Verdict.Fail(s_Wrong, error.what());
  }
  m_Lines = m_Before + m_Session.Lines();
  m_Life.End(m_Lines + 1);
}

bool Replay::Stopped() const { return Interrupted() || m_Output.Error() != 0; }

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
  while (!Stopped()) {
    const auto line = m_Session.NextLine();
    if (!line) return !Stopped();
    if (!PlayLine(*line)) return false;
  }
  return false;
}

bool Replay::PlayLine(const LineSplitter::Line& line) {
  const LineKind kind = KindOf(line);
  if (kind == LineKind::Comment && m_Comment && m_Before == 0) m_Comment(line.text);
  if (kind != LineKind::Step) return true;
  const Step step = m_Session.Read(line);
  return WaitFor(step) && m_Life.Deliver(m_Before + line.number, step);
}

bool Replay::WaitFor(const Step& step) {
  if (m_Options.pace <= 0 || !step.at) return !m_Options.served || m_Wait(Clock::now());
  const std::chrono::duration<double> after(std::min(*step.at / m_Options.pace, s_LongestWait));
  return m_Wait(m_RoundBegan + std::chrono::duration_cast<Clock::duration>(after));
}

}  // namespace driverhost
