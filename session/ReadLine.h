#pragma once

#include "session/Line.h"
#include "session/LineSplitter.h"

#include <functional>
#include <string>
#include <string_view>

namespace session {

// The content of a file that a line names, of at most s_LargestFile bytes. Throws
// std::runtime_error, whose text says what is wrong.
using ReadFile = std::function<std::string(const std::string& path)>;

// As base64 it fits a line.
constexpr std::size_t s_LargestFile = LineSplitter::s_LongestLine / 4 * 3;

// Reads one line of a session that is neither empty nor a comment. Without `readFile` it may name
// no files. Throws std::runtime_error, whose text says what is wrong with the line.
Line ReadLine(std::string_view text, const ReadFile& readFile = {});

}  // namespace session
