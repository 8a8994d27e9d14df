#include "driverhost/Live.h"

#include "driverhost/Interrupt.h"
#include "driverhost/Session.h"
#include "driverhost/StepReader.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace driverhost {

Live::Live(const std::vector<std::string>& player, const std::optional<HttpOptions>& http,
           int interrupted, Life& life, Traffic& traffic, Output& output, Verdict& verdict)
    : m_Life(life),
      m_Output(output),
      m_Verdict(verdict),
      m_Interrupt(m_Loop, interrupted),
      m_Input(
          m_Loop, STDIN_FILENO,
          [this](const LineSplitter::Line& line) { return Take(line, "stdin"); },
          [this] {
            if (!m_Player && !m_Page) Stop();
          }) {
  if (http) {
    m_Page.emplace(m_Loop, *http, verdict,
                   [this](const Step& step) { return !m_Stopping && Deliver(step); });
    traffic.Add(*m_Page);
  }
  if (player.empty()) return;
  m_Player.emplace(
      m_Loop, player, [this](const LineSplitter::Line& line) { return Take(line, "player"); },
      [this](std::optional<int> status) { OnPlayerEnd(status); });
  traffic.Add(*m_Player);
}

void Live::Run() {
  if (m_Life.Begin()) {
    Start();
    m_Loop.run();
  }
  m_Life.End(m_Steps + 1);
  if (!m_Page) return;
  // Sends what the page's clients have not got yet.
  m_Loop.restart();
  m_Loop.poll();
}

void Live::Start() {
  m_Interrupt.Wait([this] { Stop(); });
  m_Input.Start();
  try {
    if (m_Player) m_Player->Start();
  } catch (const std::runtime_error& error) {
    m_Verdict.Fail(s_Failed, std::string("driverhost: ") + error.what());
    Stop();
  }
}

bool Live::Take(const LineSplitter::Line& line, const std::string& source) {
  if (Interrupted() != 0) Stop();
  if (m_Stopping) return false;
  if (KindOf(line) == LineKind::Comment) return true;
  try {
    const std::filesystem::path workingDirectory;
    Step step = ReadStep(line, &workingDirectory);
    step.source = source;
    return Deliver(step);
  } catch (const std::runtime_error& error) {
    m_Verdict.Fail(s_Wrong, source + ':' + std::to_string(line.number) + ": " + error.what());
    return true;
  }
}

bool Live::Deliver(const Step& step) {
  const bool alive = m_Life.Deliver(++m_Steps, step);
  if (!alive || m_Output.Error() != 0) Stop();
  return !m_Stopping;
}

void Live::Stop() {
  if (m_Stopping) return;
  m_Stopping = true;
  if (m_Player) return m_Player->Stop();
  m_Loop.stop();
}

void Live::OnPlayerEnd(std::optional<int> status) {
  m_Stopping = true;
  m_Loop.stop();
  if (!status || *status == 0) return;
  const std::string how = WIFEXITED(*status)
                              ? "with exit status " + std::to_string(WEXITSTATUS(*status))
                              : std::string("by SIG") + sigabbrev_np(WTERMSIG(*status));
  m_Verdict.Fail(s_Failed, "driverhost: the player ended " + how);
}

}  // namespace driverhost
