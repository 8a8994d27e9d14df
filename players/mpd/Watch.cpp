#include "players/mpd/Watch.h"

#include <boost/asio/post.hpp>

#include <sys/epoll.h>

#include <utility>

namespace mpdplayer {

Watch::Watch(boost::asio::io_context& loop, int descriptor, std::uint32_t events)
    : m_Epoll(loop, epoll_create1(EPOLL_CLOEXEC)) {
  epoll_event wanted{};
  wanted.events = events;
  m_Always = epoll_ctl(m_Epoll.native_handle(), EPOLL_CTL_ADD, descriptor, &wanted) != 0;
}

void Watch::Wait(std::function<void()> handler) {
  if (m_Always) return boost::asio::post(m_Epoll.get_executor(), std::move(handler));
  m_Epoll.async_wait(boost::asio::posix::descriptor_base::wait_read,
                     [handler = std::move(handler)](const boost::system::error_code& error) {
                       if (!error) handler();
                     });
}

}  // namespace mpdplayer
