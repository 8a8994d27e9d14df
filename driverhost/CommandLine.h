#pragma once

#include "driverhost/Check.h"
#include "driverhost/Replay.h"

#include <boost/asio/ip/tcp.hpp>

#include <optional>
#include <string>
#include <vector>

namespace driverhost {

enum class Command { Replay, Live, Check };

// What the command line asks for.
struct CommandLine {
  Command command = Command::Replay;
  std::string driver;
  std::string session;
  std::vector<std::string> player;  // with its arguments; empty: none
  std::string record;               // empty: nowhere
  std::string imageRoot;            // empty: a temporary one
  std::string page;                 // the folder with the page's files
  std::optional<boost::asio::ip::tcp::endpoint> http;
  unsigned long id = 1;
  double timeout = 10;  // seconds for a call into the driver, 0 for ever
  bool json = false;
  bool quiet = false;
  bool asCase = false;
  bool full = false;
  bool strict = false;
  ReplayOptions replay;
  CheckOptions check;
};

// Reads the command line. Returns nothing when the program has to end with `status` instead: help
// or an error has been printed.
std::optional<CommandLine> ReadCommandLine(int argc, char** argv, int& status);

}  // namespace driverhost
