#pragma once

#include "standin/Ledger.h"

#include <cstddef>

namespace standin {

// A host object after its last reference. It is destroyed when the host's call into the driver is
// over, so that a use of it by the driver in that call can be reported.
struct Remains {
  explicit Remains(void (*destruction)(Remains*)) : destroy(destruction) {}

  void (*destroy)(Remains*);
  Remains* next = nullptr;
};

// Destroys the object at once where no host is calling into its driver.
void Bury(Remains& remains);

// Tells the current host's observer that an object of that kind was used after its last reference.
void ReportDeadUse(std::size_t Ledger::*kind);

}  // namespace standin
