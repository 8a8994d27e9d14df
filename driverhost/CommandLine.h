#pragma once

#include "driverhost/check/CheckOptions.h"
#include "driverhost/replay/Replay.h"

#include <boost/asio/ip/tcp.hpp>

#include <optional>
#include <string>
#include <vector>

namespace driverhost {

// What the command line asks for.
struct CommandLine {
  enum class Command { Replay, Live, Check };

  Command command = Command::Replay;
  DriverProcessOptions process;  // without an image root
  std::string session;
  std::vector<std::string> player;  // with its arguments; empty: none
  std::string record;               // empty: nowhere
  bool overwrite = false;           // the record, if it exists
  std::string imageRoot;            // empty: a temporary one
  std::string page;                 // the folder with the page's files
  std::optional<boost::asio::ip::tcp::endpoint> http;
  bool httpNotify = false;
  double timeout = -1;  // seconds for a call into the driver, 0 for ever
  bool json = false;
  bool quiet = false;
  bool full = false;
  bool strict = false;
  bool trace = false;
  ReplayOptions replay;
  CheckOptions check;
};

// Reads the command line. Returns nothing when the program has to end with `status` instead: help
// or an error has been printed.
std::optional<CommandLine> ReadCommandLine(int argc, char** argv, int& status);

}  // namespace driverhost
