#include "driverhost/live/Player.h"

#include "driverhost/io/Child.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <utility>

namespace driverhost {

namespace {

using Error = boost::system::error_code;

constexpr std::size_t s_MostWaiting = 1000;
constexpr std::size_t s_MostWaitingBytes = session::LineSplitter::s_LongestLine;
constexpr std::chrono::milliseconds s_UntilKill{2000};
constexpr std::chrono::milliseconds s_UntilGone{500};

}  // namespace

Player::Player(Loop& loop, std::vector<std::string> command, const PlayerBindings& bindings,
               LineReader::OnLine onLine, OnEnd onEnd)
    : m_Loop(loop),
      m_Command(std::move(command)),
      m_Bindings(bindings),
      m_OnLine(std::move(onLine)),
      m_OnEnd(std::move(onEnd)),
      m_Input(loop.Context()),
      m_Timer(loop.Context()) {}

Player::~Player() { Signal(SIGKILL); }

void Player::Start() {
  Ends input = MakePipe();
  Ends output = MakePipe();
  m_Id = StartChild({m_Command,
                     {input.one.Get(), output.two.Get(), STDERR_FILENO},
                     {{"DRIVERHOST_PROTOCOL", "1"}},
                     SIGTERM});
  m_Loop.WatchChild(m_Id, [this](int status) {
    m_Status = status;
    OnEnded();
  });
  SetNonBlocking(input.two.Get());
  m_Input.assign(input.two.Release());
  m_Output = std::move(output.one);
  m_Lines.emplace(
      m_Loop.Context(), m_Output.Get(),
      [this](const session::LineSplitter::Line& line) { return !m_Stopped && m_OnLine(line); },
      [] {});
  m_Lines->Start();
}

void Player::Pause() {
  if (m_Lines) m_Lines->Pause();
}

void Player::Resume() {
  if (m_Lines) m_Lines->Resume();
}

void Player::OnRecord(const Step& step, const session::Record& record) {
  if (record.Kind() != session::To::Device || !m_Input.is_open()) return;
  if (!m_Bindings.Hold(record.Number("binding").value_or(0))) return;
  std::string line = record.JsonOf(step.number) + '\n';
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
