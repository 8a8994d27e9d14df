#include "driverhost/Player.h"

#include "driverhost/Child.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <utility>

namespace driverhost {

namespace {

using Error = boost::system::error_code;

constexpr unsigned long s_Binding = 5001;
constexpr std::size_t s_MostWaiting = 1000;
constexpr std::size_t s_MostWaitingBytes = LineSplitter::s_LongestLine;
constexpr std::chrono::milliseconds s_UntilKill{2000};
constexpr std::chrono::milliseconds s_UntilGone{500};

}  // namespace

Player::Player(boost::asio::io_context& loop, std::vector<std::string> command,
               LineReader::OnLine onLine, OnEnd onEnd)
    : m_Loop(loop),
      m_Command(std::move(command)),
      m_OnLine(std::move(onLine)),
      m_OnEnd(std::move(onEnd)),
      m_Input(loop),
      m_Children(loop),
      m_Timer(loop) {}

Player::~Player() {
  Signal(SIGKILL);
  if (m_Output >= 0) close(m_Output);
}

void Player::Start() {
  // Processes that the program leaves become children of this one, so that their end is noticed,
  // too.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  m_Children.add(SIGCHLD);
  WaitForChildren();
  const Child child = StartChild(m_Command);
  m_Id = child.id;
  m_Input.assign(child.input);
  m_Output = child.output;
  m_Lines.emplace(
      m_Loop, m_Output,
      [this](const LineSplitter::Line& line) { return !m_Stopped && m_OnLine(line); }, [] {});
  m_Lines->Start();
}

void Player::OnStep(unsigned long number, const Step&) { m_Step = number; }

void Player::OnRecord(const Record& record) {
  if (record.to != Record::To::Device || record.Number("binding") != s_Binding) return;
  if (!m_Input.is_open()) return;
  std::string line = JsonText(record, &m_Step) + '\n';
  if (m_Waiting.size() >= s_MostWaiting ||
      (!m_Waiting.empty() && m_WaitingBytes + line.size() > s_MostWaitingBytes)) {
    if (!std::exchange(m_Losing, true)) {
      std::fprintf(stderr,
                   "driverhost: the player does not read: it loses bound calls beyond %zu\n",
                   m_Waiting.size());
    }
    return;
  }
  m_WaitingBytes += line.size();
  m_Waiting.push_back(std::move(line));
  if (!m_Writing) WriteWaiting();
}

void Player::WriteWaiting() {
  m_Writing = false;
  while (m_Input.is_open() && !m_Waiting.empty()) {
    std::string& line = m_Waiting.front();
    const ssize_t size = write(m_Input.native_handle(), line.data(), line.size());
    if (size < 0 && errno == EAGAIN) {
      m_Writing = true;
      return m_Input.async_wait(boost::asio::posix::descriptor_base::wait_write,
                                [this](const Error& error) {
                                  if (!error) WriteWaiting();
                                });
    }
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return CloseInput();
    m_WaitingBytes -= static_cast<std::size_t>(size);
    line.erase(0, static_cast<std::size_t>(size));
    if (line.empty()) m_Waiting.pop_front();
  }
}

void Player::CloseInput() {
  Error ignored;
  m_Input.close(ignored);
  m_Waiting.clear();
}

void Player::WaitForChildren() {
  m_Children.async_wait([this](const Error& error, int) {
    if (error) return;
    WaitForChildren();
    OnChildren();
  });
}

void Player::OnChildren() {
  for (;;) {
    int status = 0;
    const pid_t ended = waitpid(-1, &status, WNOHANG);
    if (ended <= 0) break;
    if (ended == m_Id) m_Status = status;
  }
  if (m_Id != 0 && m_Status) OnEnded();
}

void Player::OnEnded() {
  CloseInput();
  if (!m_Stopped) m_Lines->ReadRest();
  if (Signal(0)) return Terminate();
  GiveUp();
}

bool Player::Signal(int signal) const {
  if (m_Id == 0) return false;
  const bool group = kill(-m_Id, signal) == 0;
  const bool self = !m_Status && kill(m_Id, signal) == 0;
  return group || self;
}

void Player::Stop() {
  m_Stopped = true;
  if (m_Id == 0) return m_OnEnd(std::nullopt);
  CloseInput();
  Terminate();
}

void Player::Terminate() {
  if (std::exchange(m_Terminating, true)) return;
  Signal(SIGTERM);
  After(s_UntilKill, &Player::Kill);
}

void Player::After(std::chrono::milliseconds time, void (Player::*then)()) {
  m_Timer.expires_after(time);
  m_Timer.async_wait([this, then](const Error& error) {
    if (!error) (this->*then)();
  });
}

void Player::Kill() {
  Signal(SIGKILL);
  After(s_UntilGone, &Player::GiveUp);
}

void Player::GiveUp() {
  if (std::exchange(m_Id, 0) == 0) return;
  m_Timer.cancel();
  m_OnEnd(m_Stopped ? std::nullopt : m_Status);
}

}  // namespace driverhost
