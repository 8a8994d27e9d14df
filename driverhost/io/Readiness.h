#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>

#include <functional>

namespace driverhost {

// Waits within a loop until a descriptor can be read from. The descriptor's own flags, which other
// processes may share, stay as they are.
class Readiness {
 public:
  // `descriptor` is borrowed and outlives the object.
  Readiness(boost::asio::io_context& loop, int descriptor);

  // Calls `handler` once, from the loop, when a read would not block, at the end of the input too.
  void Wait(std::function<void()> handler);

 private:
  boost::asio::posix::stream_descriptor m_Watch;  // an epoll of its own
  bool m_Always;                                  // always readable, such as a file
};

}  // namespace driverhost
