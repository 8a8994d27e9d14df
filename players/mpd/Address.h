#pragma once

#include <sys/socket.h>

#include <string>
#include <vector>

namespace mpdplayer {

struct Address {
  sockaddr_storage socket = {};
  socklen_t size = 0;
};

// Where a host answers: a path is a Unix socket, @NAME an abstract one, all else is looked up.
// Throws std::runtime_error.
std::vector<Address> Resolve(const std::string& host, unsigned port);

}  // namespace mpdplayer
