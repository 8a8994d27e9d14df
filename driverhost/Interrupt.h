#pragma once

namespace driverhost {

// From now on SIGINT and SIGTERM ask the program to stop, and a blocked read ends with EINTR. The
// second one ends the program at once. Returns a descriptor that a wait for reading ends at when
// one came.
int CatchInterrupts();

// The signal that came; 0 while none did.
int Interrupted();

// The program has answered the signal: it ends as if none had come.
void ForgetInterrupt();

// Ends the program as that signal would have ended it, which is what its parent looks for.
[[noreturn]] void EndByInterrupt();

}  // namespace driverhost
