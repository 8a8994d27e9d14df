#include "driverhost/run/DriverProcess.h"

#include "driverhost/io/Child.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace driverhost {

namespace {

using boost::asio::posix::descriptor_base;
using Error = boost::system::error_code;

// A document can be longer than the line that causes it: each < becomes four bytes.
constexpr std::size_t s_LongestRecord = 6 * session::LineSplitter::s_LongestLine;
constexpr std::size_t s_LongestPrinted = std::size_t{64} << 10U;

// A shell reads the wrapper's words.
std::vector<std::string> Command(const DriverProcessOptions& options) {
  std::vector<std::string> command = {options.program, options.driver, std::to_string(options.id),
                                      options.imageRoot};
  if (options.lookAlways) command.emplace_back("always");
  if (options.wrapper.empty()) return command;
  command.insert(command.begin(), {"/bin/sh", "-c", "exec " + options.wrapper + " \"$@\"", "sh"});
  return command;
}

}  // namespace

DriverProcess::DriverProcess(Loop& loop, const DriverProcessOptions& options, Events events)
    : m_Loop(loop),
      m_Events(std::move(events)),
      m_Socket(loop.Context()),
      m_Lines(s_LongestRecord) {
  Ends socket = MakeSocketPair();
  SetNonBlocking(socket.one.Get());
  m_Socket.assign(socket.one.Release());
  ChildOptions child{Command(options), {}, {}, SIGKILL, options.terminal};
  std::vector<Descriptor> theirs;
  if (options.terminal) {
    child.descriptors = {STDIN_FILENO, STDIN_FILENO, STDIN_FILENO};
  } else {
    theirs.emplace_back(open("/dev/null", O_RDONLY | O_CLOEXEC));
    for (const bool output : {true, false}) {
      Ends pipe = MakePipe();
      SetNonBlocking(pipe.one.Get());
      m_Printed.push_back(
          {boost::asio::posix::stream_descriptor(loop.Context(), pipe.one.Release()),
           session::LineSplitter(s_LongestPrinted), output});
      theirs.push_back(std::move(pipe.two));
    }
    for (const Descriptor& descriptor : theirs) child.descriptors.push_back(descriptor.Get());
  }
  child.descriptors.push_back(socket.two.Get());
  m_Id = StartChild(child);
  m_Loop.WatchChild(m_Id, [this](int status) { OnExit(status); });
  WaitForLines();
  for (Printed& printed : m_Printed) WaitForPrinted(printed);
}

DriverProcess::~DriverProcess() {
  if (m_Id == 0) return;
  m_Loop.WatchChild(m_Id, [](int) {});
  Kill();
}

void DriverProcess::Send(std::string line) {
  line += '\n';
  m_WaitingBytes += line.size();
  m_ToSend.push_back(std::move(line));
  if (!m_Writing) Write();
}

void DriverProcess::EndInput() {
  m_InputEnds = true;
  if (!m_Writing) Write();
}

void DriverProcess::Write() {
  m_Writing = false;
  while (!m_ToSend.empty()) {
    const std::string_view rest = std::string_view(m_ToSend.front()).substr(m_Sent);
    const ssize_t size = send(m_Socket.native_handle(), rest.data(), rest.size(), MSG_NOSIGNAL);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0 && errno == EAGAIN) {
      m_Writing = true;
      return m_Socket.async_wait(descriptor_base::wait_write, [this](const Error& error) {
        if (!error) Write();
      });
    }
    // Whoever has closed the socket ends soon.
    if (size < 0) return m_ToSend.clear();
    m_WaitingBytes -= static_cast<std::size_t>(size);
    m_Sent += static_cast<std::size_t>(size);
    if (m_Sent < m_ToSend.front().size()) continue;
    m_Sent = 0;
    m_ToSend.pop_front();
  }
  if (m_InputEnds) shutdown(m_Socket.native_handle(), SHUT_WR);
}

void DriverProcess::WaitForLines() {
  m_Socket.async_wait(descriptor_base::wait_read, [this](const Error& error) {
    if (error || !ReadLines()) return;
    m_Events.onPause();
    WaitForLines();
  });
}

bool DriverProcess::ReadLines() {
  std::array<char, 65536> part;
  const ssize_t size = recv(m_Socket.native_handle(), part.data(), part.size(), MSG_DONTWAIT);
  if (size < 0) return errno == EINTR || errno == EAGAIN;
  if (size == 0) return false;
  for (Printed& printed : m_Printed) ReadAllPrinted(printed);  // before what came after it
  m_Lines.Append({part.data(), static_cast<std::size_t>(size)});
  while (const auto line = m_Lines.Next()) m_Events.onLine(line->tooLong ? "" : line->text);
  return true;
}

void DriverProcess::WaitForPrinted(Printed& printed) {
  printed.stream.async_wait(descriptor_base::wait_read, [this, &printed](const Error& error) {
    if (!error && ReadPrinted(printed)) WaitForPrinted(printed);
  });
}

bool DriverProcess::ReadPrinted(Printed& printed) {
  std::array<char, 65536> part;
  const ssize_t size = read(printed.stream.native_handle(), part.data(), part.size());
  if (size < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (size > 0) printed.lines.Append({part.data(), static_cast<std::size_t>(size)});
  if (size <= 0) printed.lines.End();
  while (const auto line = printed.lines.Next()) {
    m_Events.onPrinted(line->tooLong ? "a line of more than 64 KiB" : line->text, printed.output);
  }
  return size > 0;
}

void DriverProcess::ReadAllPrinted(Printed& printed) {
  int bytes = 0;
  while (ioctl(printed.stream.native_handle(), FIONREAD, &bytes) == 0 && bytes > 0)
    ReadPrinted(printed);
}

void DriverProcess::Signal(int signal) const {
  if (m_Id != 0) kill(m_Id, signal);
}

void DriverProcess::Kill() const {
  if (m_Id == 0) return;
  kill(-m_Id, SIGKILL);
  kill(m_Id, SIGKILL);
}

bool DriverProcess::HasUnread() {
  int bytes = 0;
  return ioctl(m_Socket.native_handle(), FIONREAD, &bytes) == 0 && bytes > 0;
}

// Processes that the driver has started may keep socket and pipes open: what is in them now is all.
void DriverProcess::OnExit(int status) {
  kill(-m_Id, SIGKILL);
  m_Id = 0;
  m_Socket.cancel();
  while (HasUnread() && ReadLines()) {
  }
  for (Printed& printed : m_Printed) {
    ReadAllPrinted(printed);
    printed.lines.End();
    while (const auto line = printed.lines.Next()) m_Events.onPrinted(line->text, printed.output);
    printed.stream.close();
  }
  m_Socket.close();
  if (tcgetpgrp(STDIN_FILENO) >= 0 && tcgetpgrp(STDIN_FILENO) != getpgrp()) {
    const auto before = std::signal(SIGTTOU, SIG_IGN);
    tcsetpgrp(STDIN_FILENO, getpgrp());
    std::signal(SIGTTOU, before);
  }
  m_Events.onExit(status);
}

}  // namespace driverhost
