#include "driverhost/live/Live.h"

#include "driverhost/io/Interrupt.h"
#include "driverhost/text/EndOfProcess.h"
#include "session/Case.h"

#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <utility>
#include <variant>

namespace driverhost {

Live::Live(const std::vector<std::string>& player, const PlayerBindings& bindings, bool served,
           Loop& loop, DriverRun& run, Traffic& traffic, Console& console, Verdict& verdict)
    : m_Loop(loop),
      m_Run(run),
      m_Console(console),
      m_Verdict(verdict),
      m_Input(
          loop.Context(), STDIN_FILENO,
          [this](const session::LineSplitter::Line& line) {
            return Take(line, From::Input, "stdin");
          },
          [this] { m_InputEnded = true; }),
      m_Served(served) {
  if (player.empty()) return;
  m_Player.emplace(
      loop, player, bindings,
      [this](const session::LineSplitter::Line& line) {
        return Take(line, From::Player, "player");
      },
      [this](std::optional<int> status) { OnPlayerEnd(status); });
  traffic.Add(*m_Player);
}

void Live::Run(const std::function<void()>& onStarted) {
  m_Run.Start();
  m_Loop.RunUntil([this] { return m_Run.IsIdle() || m_Run.HasEnded(); });
  if (!IsStopped()) Start(onStarted);
  m_Loop.RunUntil([this] {
    const bool ended = m_Player ? m_PlayerEnded : m_InputEnded && !m_Served;
    return IsStopped() || ended;
  });
  if (m_Player && !m_PlayerEnded) m_Player->Stop();
  m_Loop.RunUntil([this] { return !m_Player || m_PlayerEnded; }, true);
  m_Run.End(m_Steps + 1);
  m_Loop.RunUntil([this] { return m_Run.HasEnded(); }, true);
}

void Live::Start(const std::function<void()>& onStarted) {
  try {
    if (m_Player) m_Player->Start();
    onStarted();
    m_Input.Start();
  } catch (const std::runtime_error& error) {
    Fail(error.what());
  }
}

void Live::Fail(const std::string& why) {
  m_Verdict.Fail(s_DriverFailed, "driverhost: " + why);
  m_Failed = true;
}

bool Live::IsStopped() const {
  return m_Failed || Interrupted() != 0 || !m_Run.TakesLines() || m_Console.Error() != 0;
}

bool Live::Take(const session::LineSplitter::Line& line, From from, const std::string& source) {
  if (IsStopped()) return false;
  if (session::KindOf(line) == session::LineKind::Comment) return true;
  try {
    const std::filesystem::path workingDirectory;
    Step step = ReadStep(line, from, source, &workingDirectory);
    if (std::holds_alternative<session::Start>(step.line.action)) {
      throw std::runtime_error(R"("start" stands in the first line of a session only)");
    }
    Deliver(std::move(step));
  } catch (const std::runtime_error& error) {
    m_Verdict.Fail(s_InputWrong, source + ':' + std::to_string(line.number) + ": " + error.what());
  }
  return true;
}

void Live::Deliver(Step step) {
  step.number = ++m_Steps;
  m_Run.Deliver(std::move(step));
  if (m_Run.HasRoom()) return;
  m_Input.Pause();
  if (m_Player) m_Player->Pause();
}

void Live::Resume() {
  if (!m_Run.HasRoom()) return;
  m_Input.Resume();
  if (m_Player && m_Run.HasRoom()) m_Player->Resume();
}

void Live::OnPlayerEnd(std::optional<int> status) {
  m_PlayerEnded = true;
  if (!status || *status == 0) return;
  const bool exited = EndOfProcess(*status).starts_with("exit");
  m_Verdict.Fail(s_DriverFailed, std::string("driverhost: the player ended ") +
                                     (exited ? "with " : "by ") + EndOfProcess(*status));
}

}  // namespace driverhost
