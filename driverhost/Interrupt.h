#pragma once

namespace driverhost {

// From now on SIGINT and SIGTERM ask the program to stop, and a blocked read ends with EINTR. The
// second one ends the program at once.
void CatchInterrupts();

// Whether one came.
bool Interrupted();

}  // namespace driverhost
