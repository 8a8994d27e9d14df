#include "driverhost/web/Handover.h"

#include <sys/eventfd.h>

#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

namespace driverhost {

namespace {

int MakeEvent() {
  const int event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (event < 0) throw std::system_error(errno, std::generic_category(), "no event");
  return event;
}

}  // namespace

Handover::Handover(boost::asio::io_context& loop) : m_Event(loop, MakeEvent()) { Wait(); }

Handover::~Handover() {
  m_Acts.consume_all([](Act* act) { const std::unique_ptr<Act> owner(act); });
}

void Handover::Post(Act act) {
  auto owner = std::make_unique<Act>(std::move(act));
  m_Acts.push(owner.get());
  static_cast<void>(owner.release());
  eventfd_write(m_Event.native_handle(), 1);
}

void Handover::Wait() {
  m_Event.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                     [this](boost::system::error_code error) {
                       if (!error) DoThose();
                     });
}

// Those that come meanwhile have to wait, so that the loop's other work gets its turn.
void Handover::DoThose() {
  Wait();
  eventfd_t count = 0;
  eventfd_read(m_Event.native_handle(), &count);
  for (Act* act = nullptr; count > 0 && m_Acts.pop(act); --count) {
    const std::unique_ptr<Act> owner(act);
    try {
      (*act)();
    } catch (...) {
      eventfd_write(m_Event.native_handle(), count - 1);
      throw;
    }
  }
}

}  // namespace driverhost
