#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace driverhost {

bool IsUtf8(std::string_view text);

// The text for a terminal: control characters and bytes that are not UTF-8 are written as escapes
// (\n, \x1B). What is longer than `limit` characters is cut there, between two characters, and
// says how many bytes the whole has.
std::string Legible(std::string_view text, std::size_t limit);

}  // namespace driverhost
