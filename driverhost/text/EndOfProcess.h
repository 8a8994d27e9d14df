#pragma once

#include <string>

namespace driverhost {

// How a process ended, of which waitpid told this status: "exit status 3", "SIGSEGV", "signal 34".
std::string EndOfProcess(int status);

// Whether it ended by a signal that tells of a fault in the process.
bool IsCrash(int status);

}  // namespace driverhost
