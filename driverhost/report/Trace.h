#pragma once

#include "driverhost/run/Step.h"
#include "session/Record.h"

#include <string>

namespace driverhost {

// Objects of a trace, as JSON on one line: a step's input, {"step":3,"at":1.204113,"from":"player",
// "notify":...}, and a record that has just come, {"step":3,"at":1.204187,"to":...}. The times are
// seconds since the program's start.
std::string TraceOf(const Step& step);
std::string TraceOf(const Step& step, const session::Record& record);

// What has just been said of a step or in it, {"step":3,"at":1.204191,"KEY":TEXT}.
std::string TraceOf(const Step& step, const char* key, const std::string& text);

}  // namespace driverhost
