#include "driverhost/web/WebAddress.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/udp.hpp>

#include <charconv>
#include <cstdint>
#include <stdexcept>

namespace driverhost {

namespace {

namespace ip = boost::asio::ip;

// Addresses of documentation: there is a way to them wherever there is one to other machines.
constexpr char s_Outside4[] = "192.0.2.1";
constexpr char s_Outside6[] = "2001:db8::1";

// As it stands in a URL, which has neither a scope nor a mapped address.
std::string HostText(const ip::address& address) {
  if (address.is_v4()) return address.to_string();
  const ip::address_v6 address6 = address.to_v6();
  if (address6.is_v4_mapped()) return make_address_v4(ip::v4_mapped, address6).to_string();
  return '[' + ip::address_v6(address6.to_bytes()).to_string() + ']';
}

// The address of this machine from which a packet would go there. Sends none.
ip::address SourceTowards(const char* destination, const ip::address& otherwise) {
  boost::asio::io_context loop;
  const ip::udp::endpoint there(ip::make_address(destination), 9);
  ip::udp::socket socket(loop);
  boost::system::error_code error;
  socket.open(there.protocol(), error);
  if (!error) socket.connect(there, error);
  if (error) return otherwise;
  const auto here = socket.local_endpoint(error);
  return error ? otherwise : here.address();
}

}  // namespace

ip::tcp::endpoint ReadEndpoint(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  std::string host = colon == std::string::npos ? "127.0.0.1" : text.substr(0, colon);
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  }
  boost::system::error_code error;
  const auto address = ip::make_address(host, error);
  if (error) throw std::runtime_error("\"" + host + "\" is not an IP address");
  const std::string digits = colon == std::string::npos ? text : text.substr(colon + 1);
  std::uint16_t port = 0;
  const char* end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, port);
  if (read.ec != std::errc() || read.ptr != end) {
    throw std::runtime_error("\"" + digits + "\" is not a port");
  }
  return {address, port};
}

std::vector<std::string> HostNames(const ip::tcp::endpoint& served) {
  std::vector<std::string> hosts = {HostText(served.address())};
  if (served.address().is_loopback() || hosts[0].starts_with("127.")) {
    hosts.emplace_back("localhost");
  }
  std::vector<std::string> names;
  for (const std::string& host : hosts) {
    names.push_back(host + ':' + std::to_string(served.port()));
    if (served.port() == 80) names.push_back(host);
  }
  return names;
}

ip::tcp::endpoint OpenableEndpoint(const ip::tcp::endpoint& served) {
  if (!served.address().is_unspecified()) return served;
  const ip::address address = served.address().is_v4()
                                  ? SourceTowards(s_Outside4, ip::address_v4::loopback())
                                  : SourceTowards(s_Outside6, ip::address_v6::loopback());
  return {address, served.port()};
}

}  // namespace driverhost
