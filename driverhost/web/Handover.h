#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/lockfree/queue.hpp>

#include <cstddef>
#include <functional>

namespace driverhost {

// Has things done on the thread of a loop. Whoever asks for it takes no lock that this thread may
// hold, and so waits for nobody, however busy the processor is.
class Handover {
 public:
  using Act = std::function<void()>;

  // The loop outlives the object. What has not been done when the object ends is not done.
  explicit Handover(boost::asio::io_context& loop);
  ~Handover();
  Handover(const Handover&) = delete;
  Handover& operator=(const Handover&) = delete;

  // May be called on any thread. The loop does things in the order in which they were asked for.
  void Post(Act act);

  // Nothing is done any more. Requires: the loop's thread calls it.
  void Stop() { m_Event.cancel(); }

 private:
  void Wait();
  void DoThose();

  boost::lockfree::queue<Act*> m_Acts{128};
  boost::asio::posix::stream_descriptor m_Event;
};

}  // namespace driverhost
