#pragma once

#include "session/Line.h"

#include <string>

namespace driverhost {

// A line as it is shown above its traffic: "notify NAME  parameter=value ...", legible; long values
// are shortened unless `whole`.
std::string StepTitle(const session::Line& line, bool whole);

}  // namespace driverhost
