#include "players/mpd/Address.h"

#include <netdb.h>

#include <sys/un.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace mpdplayer {

namespace {

Address UnixAddress(const std::string& path) {
  sockaddr_un socket = {};
  if (path.size() >= sizeof socket.sun_path) throw std::runtime_error("the path is too long");
  socket.sun_family = AF_UNIX;
  std::memcpy(socket.sun_path, path.data(), path.size());
  const bool abstract = path.front() == '@';
  if (abstract) socket.sun_path[0] = '\0';

  Address address;
  address.size =
      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size() + (abstract ? 0 : 1));
  std::memcpy(&address.socket, &socket, sizeof socket);
  return address;
}

}  // namespace

std::vector<Address> Resolve(const std::string& host, unsigned port) {
  if (host.front() == '/' || host.front() == '@') return {UnixAddress(host)};
  addrinfo hints = {};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int fault = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (fault != 0) throw std::runtime_error(gai_strerror(fault));

  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> all(found, &freeaddrinfo);
  std::vector<Address> addresses;
  for (const addrinfo* each = found; each; each = each->ai_next) {
    Address address;
    address.size = each->ai_addrlen;
    std::memcpy(&address.socket, each->ai_addr, each->ai_addrlen);
    addresses.push_back(address);
  }
  return addresses;
}

}  // namespace mpdplayer
