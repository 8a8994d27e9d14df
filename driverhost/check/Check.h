#pragma once

#include "driverhost/check/CheckOptions.h"
#include "driverhost/io/Loop.h"
#include "driverhost/io/Output.h"

namespace driverhost {

// Plays each case into a fresh driver, several at a time, and compares the traffic with what the
// case expects. Says what came of each in the order in which they are given. Returns the program's
// exit status.
int RunCheck(const CheckOptions& options, Loop& loop, Console& console);

}  // namespace driverhost
