#include "standin/Ledger.h"

#include "standin/Counted.h"

namespace standin {

Ledger s_Ledger{};

Ledger GetLedger() { return s_Ledger; }

}  // namespace standin
