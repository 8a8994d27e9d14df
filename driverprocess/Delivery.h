#pragma once

#include "session/Line.h"
#include "standin/Host.h"

namespace driverprocess {

// Makes the call that a line stands for. What the driver throws comes out. Requires: the line is
// neither the first nor the last of a life.
void Deliver(standin::Host& host, const session::Action& action);

}  // namespace driverprocess
