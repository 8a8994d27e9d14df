#include "standin/Remains.h"

#include "standin/Services.h"

#include <string>

namespace standin {

void Bury(Remains& remains) {
  if (Services* services = Services::Current()) {
    remains.next = services->dead;
    services->dead = &remains;
  } else {
    remains.destroy(&remains);
  }
}

void ReportDeadUse(std::size_t Ledger::*kind) {
  if (Services* services = Services::Current()) {
    services->observer.OnMisuse(std::string("a ") + NameOf(kind) +
                                " was used or released after its last reference");
  }
}

}  // namespace standin
