#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace driverhost {

struct CheckOptions {
  std::string driver;
  std::vector<std::string> cases;
  double timeout = 10;  // seconds for a call into the driver, 0 for ever
  bool update = false;
  bool coverage = false;
  bool json = false;
  bool quiet = false;
  bool strict = false;
  bool coloured = false;
};

// Plays each case in a process of its own, with a fresh driver, and compares the traffic with what
// the case expects. Returns the program's exit status.
int RunCheck(const CheckOptions& options);

}  // namespace driverhost
