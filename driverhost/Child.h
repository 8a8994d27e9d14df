#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace driverhost {

// A program that has been started, in a process group of its own.
struct Child {
  pid_t id;
  int input;   // the end of a pipe to its standard input, which does not block
  int output;  // the end of a pipe from its standard output
};

// Starts a program, which is looked up as a shell does. It gets SIGTERM when this process ends. The
// caller closes both descriptors. Throws std::runtime_error when it cannot be started. Requires:
// `command` names at least the program.
Child StartChild(const std::vector<std::string>& command);

}  // namespace driverhost
