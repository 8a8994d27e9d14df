#pragma once

#include "driverhost/LineSplitter.h"
#include "driverhost/Step.h"

#include <filesystem>

namespace driverhost {

// Reads one line of a session that is neither empty nor a comment. The paths in it start from
// `folder`; without one it may name no files. The step borrows the line's text. Throws
// std::runtime_error, whose text says what is wrong with the line.
Step ReadStep(const LineSplitter::Line& line, const std::filesystem::path* folder);

}  // namespace driverhost
