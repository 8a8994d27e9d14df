#pragma once

namespace driverhost {

// From now on SIGINT and SIGTERM ask the program to stop, and a blocked read ends with EINTR. The
// second signal ends the program at once. Returns a descriptor that becomes readable when a signal
// has come.
int CatchInterrupts();

// The signal that has come; 0 if none has.
int Interrupted();

// The program has answered the signal: it ends as if none had come.
void ForgetInterrupt();

// Ends the program as that signal would have ended it, which is what its parent looks for.
[[noreturn]] void EndByInterrupt();

}  // namespace driverhost
