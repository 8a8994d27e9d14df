#include "driverhost/Replay.h"

#include "driverhost/Interrupt.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace driverhost {

namespace {

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
    if (m_Life.Begin()) PlayRounds();
  } catch (const SessionError& error) {
    m_Verdict.Fail(s_Wrong, error.what());
  }
  m_Lines = m_Before + m_Session.Lines();
  m_Life.End(m_Lines + 1);
}

bool Replay::Stopped() const { return Interrupted() || m_Output.Error() != 0; }

void Replay::PlayRounds() {
  for (unsigned long round = 1; !Stopped(); ++round) {
    PlayRound();
    if (round == m_Options.repeat || Stopped() || m_Verdict.Status() != s_Ran) return;
    m_Before += m_Session.Lines();
    m_Session.Rewind();
  }
}

void Replay::PlayRound() {
  m_RoundBegan = std::chrono::steady_clock::now();
  while (!Stopped()) {
    const auto line = m_Session.NextLine();
    if (!line || !PlayLine(*line)) return;
  }
}

bool Replay::PlayLine(const LineSplitter::Line& line) {
  const LineKind kind = KindOf(line);
  if (kind == LineKind::Comment && m_Comment && m_Before == 0) m_Comment(line.text);
  if (kind != LineKind::Step) return true;
  const Step step = m_Session.Read(line);
  if (m_Options.pace > 0 && step.at) WaitFor(*step.at);
  return Stopped() || m_Life.Deliver(m_Before + line.number, step);
}

void Replay::WaitFor(double at) {
  const std::chrono::duration<double> after(std::min(at / m_Options.pace, s_LongestWait));
  m_Wait(m_RoundBegan + std::chrono::duration_cast<std::chrono::steady_clock::duration>(after));
}

}  // namespace driverhost
