#include "driverhost/io/Readiness.h"

#include <boost/asio/post.hpp>

#include <sys/epoll.h>

#include <utility>

namespace driverhost {

Readiness::Readiness(boost::asio::io_context& loop, int descriptor)
    : m_Watch(loop, epoll_create1(EPOLL_CLOEXEC)) {
  epoll_event readable{};
  readable.events = EPOLLIN;
  m_Always = epoll_ctl(m_Watch.native_handle(), EPOLL_CTL_ADD, descriptor, &readable) != 0;
}

void Readiness::Wait(std::function<void()> handler) {
  if (m_Always) return boost::asio::post(m_Watch.get_executor(), std::move(handler));
  m_Watch.async_wait(boost::asio::posix::descriptor_base::wait_read,
                     [handler = std::move(handler)](const boost::system::error_code& error) {
                       if (!error) handler();
                     });
}

}  // namespace driverhost
