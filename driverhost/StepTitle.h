#pragma once

#include <string>
#include <string_view>

namespace driverhost {

// A session's line as it is shown above its traffic: "notify NAME  parameter=value ...", legible;
// long values are shortened unless `whole`. Requires: the line has been read as a step.
std::string StepTitle(std::string_view line, bool whole);

}  // namespace driverhost
