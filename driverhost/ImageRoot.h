#pragma once

#include <string>

namespace driverhost {

// The directory below which pictures are written, with its separator at the end. `asked` is made if
// missing; a failure shows where the driver meets it. An empty one stands for a new directory for
// temporary files; throws std::runtime_error when that cannot be made.
std::string MakeImageRoot(const std::string& asked);

}  // namespace driverhost
