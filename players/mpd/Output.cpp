#include "players/mpd/Output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace mpdplayer {

namespace {

constexpr std::size_t s_Enough = std::size_t{64} << 10U;

// Terminals stay as they are, since other programs use them too; terminals and files take a small
// piece at once whenever poll says so.
bool MakeNonBlocking(int fd) {
  struct stat status = {};
  if (fstat(fd, &status) != 0 || (!S_ISFIFO(status.st_mode) && !S_ISSOCK(status.st_mode))) {
    return false;
  }
  return fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK) == 0;
}

}  // namespace

Output::Output(int fd)
    : m_Fd(fd), m_AtOnce(MakeNonBlocking(fd) ? std::size_t{1} << 20U : std::size_t{PIPE_BUF}) {}

void Output::Say(const std::string& line) {
  m_Pending += line;
  m_Pending += '\n';
}

bool Output::Full() const { return m_Pending.size() - m_Written > s_Enough; }

bool Output::Write() {
  const std::size_t size = std::min(m_Pending.size() - m_Written, m_AtOnce);
  const ssize_t written = write(m_Fd, m_Pending.data() + m_Written, size);
  if (written < 0) return errno == EAGAIN || errno == EINTR;
  m_Written += static_cast<std::size_t>(written);
  if (!Empty()) return true;
  if (m_Pending.capacity() > s_Enough) m_Pending = std::string();
  m_Pending.clear();
  m_Written = 0;
  return true;
}

}  // namespace mpdplayer
