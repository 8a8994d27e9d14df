#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>

#include <cstdint>
#include <functional>

namespace mpdplayer {

// Waits within a loop until a descriptor is ready. The descriptor's own flags, which other
// programs may share, stay as they are.
class Watch {
 public:
  // `descriptor` is borrowed and outlives the object; `events` is EPOLLIN or EPOLLOUT.
  Watch(boost::asio::io_context& loop, int descriptor, std::uint32_t events);

  // Calls `handler` once, from the loop, when a call would not block or would fail.
  void Wait(std::function<void()> handler);

 private:
  boost::asio::posix::stream_descriptor m_Epoll;  // an epoll of its own
  bool m_Always;                                  // always ready, such as a file
};

}  // namespace mpdplayer
