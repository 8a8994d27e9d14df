#pragma once

#include "driverhost/io/Descriptor.h"

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace driverhost {

// How a program is started. The descriptors are borrowed.
struct ChildOptions {
  std::vector<std::string> command;  // the program, looked up as a shell does, and its arguments
  std::vector<int> descriptors;      // what it has as 0, 1, 2 and so on; all others are closed
  std::map<std::string, std::string> environment;  // added to the program's own
  int signalAtEnd;                                 // that it gets when this process ends
  bool terminal = false;                           // it gets the terminal that is its descriptor 0
};

// Starts a program in a process group of its own. Throws std::runtime_error when it cannot be
// started.
pid_t StartChild(const ChildOptions& options);

// Two ends of a pipe, or of a socket. Both close when another program is started.
struct Ends {
  Descriptor one;  // of a pipe: to read from
  Descriptor two;  // of a pipe: to write to
};
Ends MakePipe();
Ends MakeSocketPair();

void SetNonBlocking(int descriptor);

}  // namespace driverhost
