#pragma once

#include "driverhost/run/DriverProcess.h"

#include <string>
#include <vector>

namespace driverhost {

struct CheckOptions {
  std::vector<std::string> cases;
  DriverProcessOptions process;  // without an image root
  double timeout = 10;           // seconds for a call into the driver, 0 for ever
  unsigned long jobs = 0;        // how many cases at a time; 0: as many as there are processors
  std::string junit;             // the file for continuous integration; empty: none
  bool update = false;
  bool coverage = false;
  bool json = false;
  bool quiet = false;
  bool strict = false;
  bool coloured = false;
};

}  // namespace driverhost
