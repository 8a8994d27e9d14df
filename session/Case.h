#pragma once

#include "session/LineSplitter.h"

#include <string>
#include <string_view>

namespace session {

// A line is a step unless it is empty, is a comment, or, in a case, is a record: an object whose
// first key is "to".
enum class LineKind { Step, Comment, Record };
LineKind KindOf(const LineSplitter::Line& line);

// What keeps a line from being a record of a case; empty when nothing does.
std::string RecordFault(std::string_view line);

}  // namespace session
