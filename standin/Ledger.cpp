#include "standin/Ledger.h"

#include "standin/HostObject.h"

namespace standin {

Ledger GetLedger() { return HostObject::Held(); }

const char* NameOf(std::size_t Ledger::*kind) {
  return kind == &Ledger::nodes             ? "node"
         : kind == &Ledger::documents       ? "document"
         : kind == &Ledger::commandMessages ? "command message"
                                            : "bind message";
}

}  // namespace standin
