#pragma once

#include <boost/asio/ip/tcp.hpp>

#include <string>
#include <vector>

namespace driverhost {

// Reads "[ADDRESS:]PORT"; without an address it is 127.0.0.1. Throws std::runtime_error, whose text
// says what is wrong.
boost::asio::ip::tcp::endpoint ReadEndpoint(const std::string& text);

// The ways to write the address in "Host".
std::vector<std::string> HostNames(const boost::asio::ip::tcp::endpoint& served);

// An address of this machine that a browser can open: for one that stands for all addresses, the
// one that leads out of the machine, or the loopback.
boost::asio::ip::tcp::endpoint OpenableEndpoint(const boost::asio::ip::tcp::endpoint& served);

}  // namespace driverhost
