#include "session/Utf8.h"

#include <algorithm>

namespace session {

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const auto* const other = std::find_if(text.begin(), text.end(),
                                           [](char c) { return static_cast<signed char>(c) < 0; });
    text.remove_prefix(static_cast<std::size_t>(other - text.begin()));
    if (text.empty()) return true;
    const Utf8Sequence sequence = ReadUtf8(text);
    if (!sequence.valid) return false;
    text.remove_prefix(sequence.length);
  }
  return true;
}

}  // namespace session
