#pragma once

#include "driverhost/run/DriverRun.h"
#include "driverhost/run/Traffic.h"

#include <string>

namespace driverhost {

// What a replay came to: "641 lines, 639 messages, ..." in one line.
std::string SummaryText(unsigned long lines, const DriverRun& run, const Traffic& traffic,
                        double seconds);

// The process's resident memory, the peak and now, and the objects held by the driver at its end,
// in one line.
std::string MemoryText(const DriverRun& run);

}  // namespace driverhost
