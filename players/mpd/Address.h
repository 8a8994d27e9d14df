#pragma once

#include <sys/socket.h>

#include <string>
#include <vector>

namespace mpdplayer {

struct Address {
  sockaddr_storage socket = {};
  socklen_t size = 0;
};

// The addresses of a host: a path is a Unix socket, @NAME an abstract one, all else is looked up.
// Throws std::runtime_error, whose text says why there is none.
std::vector<Address> Resolve(const std::string& host, unsigned port);

}  // namespace mpdplayer
