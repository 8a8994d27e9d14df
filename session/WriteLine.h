#pragma once

#include "session/Line.h"

#include <string>

namespace session {

// The line as JSON that ReadLine reads to the same; without a line break.
std::string WriteLine(const Line& line);

// What the line is, legible and short: "notify NEW_LIST", "bind 5001", "destroy".
std::string TitleOf(const Action& action);

}  // namespace session
