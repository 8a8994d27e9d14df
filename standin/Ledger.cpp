#include "standin/Ledger.h"

#include "standin/Counted.h"

namespace standin {

Ledger s_Ledger{};

Ledger GetLedger() { return s_Ledger; }

const char* NameOf(std::size_t Ledger::*kind) {
  return kind == &Ledger::nodes             ? "node"
         : kind == &Ledger::documents       ? "document"
         : kind == &Ledger::commandMessages ? "command message"
                                            : "bind message";
}

}  // namespace standin
