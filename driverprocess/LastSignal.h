#pragma once

namespace driverprocess {

// From now on, when a signal ends the process because of the driver, the calling thread's stack is
// reported first, as {"stack":"ADDRESS ADDRESS...","maps":"the process's maps"}. After that the
// signal takes its usual course; one that the bench sent, to see where a driver hangs, ends the
// process without a core. `socket` is where reports go.
void ReportLastSignal(int socket);

}  // namespace driverprocess
