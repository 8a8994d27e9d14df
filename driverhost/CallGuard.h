#pragma once

#include "driverhost/Output.h"

#include <string>

namespace driverhost {

// Stands around one call into the driver. When the call crashes, aborts, ends the program or does
// not return in time, standard output is flushed and one line on standard error says in which step
// that was. A crash then takes its usual course; otherwise the program ends with exit status 1.
class CallGuard {
 public:
  // Once, before the first call. `output` outlives the program's calls into drivers. `seconds` is
  // how long a call may take, 0 for ever.
  static void Install(Output& output, double seconds);

  CallGuard(unsigned long step, const std::string& title);
  ~CallGuard();
  CallGuard(const CallGuard&) = delete;
  CallGuard& operator=(const CallGuard&) = delete;
};

}  // namespace driverhost
