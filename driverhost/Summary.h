#pragma once

#include "driverhost/Traffic.h"

#include <cstddef>
#include <string>

namespace driverhost {

// What a replay came to.
struct Figures {
  unsigned long lines = 0;
  // The lines that made a call into the driver.
  unsigned long messages = 0;
  Traffic::Counts traffic;
  double seconds = 0;
  // Held by the driver after the last line.
  std::size_t objectsHeld = 0;
};

// "641 lines, 639 messages, ..." in one line.
std::string SummaryText(const Figures& figures);

// The process's resident memory, the peak and now, and the objects held, in one line.
std::string MemoryText(const Figures& figures);

}  // namespace driverhost
