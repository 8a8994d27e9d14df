#include "driverhost/io/LineReader.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace driverhost {

LineReader::LineReader(boost::asio::io_context& loop, int descriptor, OnLine onLine,
                       std::function<void()> onEnd)
    : m_Descriptor(descriptor),
      m_OnLine(std::move(onLine)),
      m_OnEnd(std::move(onEnd)),
      m_Readiness(loop, descriptor) {}

void LineReader::Start() {
  if (m_Waiting || m_Paused) return;
  m_Waiting = true;
  m_Readiness.Wait([this] { OnReadable(); });
}

void LineReader::Resume() {
  if (!std::exchange(m_Paused, false)) return;
  TakeLines();
  if (m_Paused || !m_Wanted) return;
  m_Ended ? End() : Start();
}

void LineReader::OnReadable() {
  m_Waiting = false;
  if (!m_Wanted || m_Paused) return;
  if (ReadPart() == 0 && errno != EAGAIN && errno != EINTR) return End();
  if (m_Wanted) Start();
}

std::size_t LineReader::ReadPart() {
  std::array<char, 65536> part;
  errno = 0;
  const ssize_t size = read(m_Descriptor, part.data(), part.size());
  if (size <= 0) return 0;
  m_Splitter.Append({part.data(), static_cast<std::size_t>(size)});
  TakeLines();
  return static_cast<std::size_t>(size);
}

void LineReader::TakeLines() {
  while (m_Wanted && !m_Paused) {
    const auto line = m_Splitter.Next();
    if (!line) return;
    m_Wanted = m_OnLine(*line);
  }
}

void LineReader::ReadRest() {
  m_Draining = true;
  m_Paused = false;
  TakeLines();
  int held = 0;
  ioctl(m_Descriptor, FIONREAD, &held);
  for (auto left = static_cast<std::size_t>(held); m_Wanted && left > 0;) {
    const std::size_t size = ReadPart();
    left = size == 0 ? 0 : left - std::min(left, size);
  }
  if (m_Wanted) End();
}

void LineReader::End() {
  if (!std::exchange(m_Ended, true)) m_Splitter.End();
  TakeLines();
  if (m_Paused) return;
  if (m_Wanted) m_OnEnd();
  m_Wanted = false;
}

}  // namespace driverhost
