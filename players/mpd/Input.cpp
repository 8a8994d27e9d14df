#include "players/mpd/Input.h"

#include "players/mpd/Complaint.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace mpdplayer {

namespace {

constexpr std::size_t s_LongestLine = std::size_t{1} << 20U;

}  // namespace

Input::Input(boost::asio::io_context& loop, int fd, Handlers handlers)
    : m_Fd(fd), m_Handlers(std::move(handlers)), m_Watch(loop, fd, EPOLLIN) {}

void Input::Start() {
  m_Handlers.pace([this] { m_Watch.Wait([this] { Read(); }); });
}

void Input::Read() {
  char piece[16384];
  const ssize_t size = read(m_Fd, piece, sizeof piece);
  const bool later = size < 0 && (errno == EAGAIN || errno == EINTR);
  if (size <= 0 && !later) return m_Handlers.onEnd();
  if (size > 0) m_Buffer.append(piece, static_cast<std::size_t>(size));
  TakeLines();
  Start();
}

void Input::TakeLines() {
  std::size_t start = 0;
  for (std::size_t end = 0; (end = m_Buffer.find('\n', start)) != std::string::npos;) {
    if (!m_Skipping && end > start) m_Handlers.onLine(m_Buffer.substr(start, end - start));
    m_Skipping = false;
    start = end + 1;
  }
  m_Buffer.erase(0, start);
  if (m_Buffer.size() <= s_LongestLine) return;
  if (!m_Skipping) Complain("a line of the input is longer than 1 MiB");
  m_Skipping = true;
  m_Buffer.clear();
}

}  // namespace mpdplayer
