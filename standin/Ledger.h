#pragma once

#include "host/HostApi.h"

#include <cstddef>

namespace standin {

// How many host objects of each kind somebody still holds, in the whole process.
struct Ledger {
  std::size_t nodes;
  std::size_t documents;
  std::size_t commandMessages;
  std::size_t bindMessages;

  std::size_t Total() const { return nodes + documents + commandMessages + bindMessages; }
  bool Empty() const { return Total() == 0; }
};
HOST_API Ledger GetLedger();

// "node", "document", "command message", "bind message".
HOST_API const char* NameOf(std::size_t Ledger::*kind);

}  // namespace standin
