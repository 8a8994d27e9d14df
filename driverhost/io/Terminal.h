#pragma once

#include <cstddef>

namespace driverhost {

// Whether standard output is a terminal that takes colours, and NO_COLOR does not forbid them.
bool TakesColours();

// The columns of the terminal that standard output is; 80 when it is none.
std::size_t TerminalColumns();

}  // namespace driverhost
