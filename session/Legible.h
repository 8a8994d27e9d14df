#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace session {

// The text for a terminal: control characters and bytes that are not UTF-8 are written as escapes
// (\n, \x1B). What needs more than `columns` is cut there, between two characters, and says how
// many bytes the whole has. Wide characters count as two columns where LC_CTYPE is one of UTF-8.
std::string Legible(std::string_view text, std::size_t columns);

// A name, legible and shortened, in double quotes.
std::string Quoted(std::string_view name);

// A legible text cut in the same way, with only dots at its end.
std::string Cut(std::string_view text, std::size_t columns);

}  // namespace session
