#include "session/Number.h"

#include <charconv>
#include <system_error>

namespace session {

std::optional<unsigned long> ReadNumber(std::string_view text) {
  const char* end = text.data() + text.size();
  unsigned long number = 0;
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

}  // namespace session
