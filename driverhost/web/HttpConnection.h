#pragma once

#include "driverhost/web/WebDoor.h"

#include <boost/asio/ip/tcp.hpp>

#include <memory>

namespace driverhost {

// Begins to serve a client: its request and the answer to it. One that asks for the traffic becomes
// a listener. `door` outlives the connection. A client that is one too many gets an answer that
// says so.
std::shared_ptr<WebClient> ServeHttp(boost::asio::ip::tcp::socket socket, WebDoor& door,
                                     bool oneTooMany);

}  // namespace driverhost
