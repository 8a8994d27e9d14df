#include "players/mpd/Output.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

namespace mpdplayer {

namespace {

constexpr std::size_t s_Enough = std::size_t{64} << 10U;

// Terminals stay as they are, since other programs use them too; terminals and files take a small
// piece at once whenever they are ready.
bool MakeNonBlocking(int fd) {
  struct stat status = {};
  if (fstat(fd, &status) != 0 || (!S_ISFIFO(status.st_mode) && !S_ISSOCK(status.st_mode))) {
    return false;
  }
  return fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK) == 0;
}

}  // namespace

Output::Output(boost::asio::io_context& loop, int fd, std::function<void()> onClosed)
    : m_Fd(fd),
      m_AtOnce(MakeNonBlocking(fd) ? std::size_t{1} << 20U : std::size_t{PIPE_BUF}),
      m_OnClosed(std::move(onClosed)),
      m_Watch(loop, fd, EPOLLOUT) {}

void Output::Say(const std::string& line) {
  const bool idle = Waiting() == 0;
  m_Pending += line;
  m_Pending += '\n';
  if (Waiting() > s_Enough) m_Room.SetOpen(false);
  if (idle) Wait();
}

void Output::Wait() {
  m_Watch.Wait([this] { Write(); });
}

void Output::Flush() {
  if (Waiting() > 0) Write();
}

void Output::Write() {
  const std::size_t size = std::min(Waiting(), m_AtOnce);
  const ssize_t written = write(m_Fd, m_Pending.data() + m_Written, size);
  if (written < 0 && errno != EAGAIN && errno != EINTR) return m_OnClosed();
  m_Written += static_cast<std::size_t>(std::max<ssize_t>(written, 0));
  const bool done = Waiting() == 0;
  if (done) {
    if (m_Pending.capacity() > s_Enough) m_Pending = std::string();
    m_Pending.clear();
    m_Written = 0;
  } else {
    Wait();
  }
  if (Waiting() <= s_Enough) m_Room.SetOpen(true);
}

}  // namespace mpdplayer
