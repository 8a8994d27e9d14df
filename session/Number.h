#pragma once

#include <optional>
#include <string_view>

namespace session {

// The number that decimal digits alone stand for; nothing for any other text and for a number that
// the type cannot hold.
std::optional<unsigned long> ReadNumber(std::string_view text);

}  // namespace session
