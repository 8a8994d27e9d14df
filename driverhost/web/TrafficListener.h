#pragma once

#include "driverhost/web/WebDoor.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/message.hpp>

#include <memory>

namespace driverhost {

using UpgradeRequest = boost::beast::http::request<boost::beast::http::buffer_body>;

// Begins to serve a client that has asked for a WebSocket: tells it what is registered and all
// traffic from the newest objects on, and takes its lines. `door` outlives the connection.
std::shared_ptr<WebClient> ServeTraffic(boost::asio::ip::tcp::socket socket,
                                        const UpgradeRequest& request, WebDoor& door);

}  // namespace driverhost
