#pragma once

namespace driverhost {

// From now on SIGINT, SIGTERM and SIGHUP (unless it was ignored) ask the program to stop, and a
// blocked read ends with EINTR. The second signal ends the program at once. Once, before the
// program's loop is made.
void CatchInterrupts();

// Becomes readable when a signal has come.
int InterruptDescriptor();

// The signal that has come; 0 if none has.
int Interrupted();

// The program has answered the signal: it ends as if none had come.
void ForgetInterrupt();

// Ends the program as that signal would have ended it, which is what its parent looks for.
[[noreturn]] void EndByInterrupt();

}  // namespace driverhost
