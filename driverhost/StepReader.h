#pragma once

#include "driverhost/Step.h"

#include <filesystem>
#include <string_view>

namespace driverhost {

// Reads one line of a session, without its line break, that is neither empty nor a comment. The
// paths in it start from `folder`. Throws std::runtime_error, whose text says what is wrong with
// the line. The step has no line number yet.
Step ReadStep(std::string_view line, const std::filesystem::path& folder);

}  // namespace driverhost
