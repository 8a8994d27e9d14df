#pragma once

#include <boost/locale/utf.hpp>

#include <cstddef>
#include <string_view>

namespace session {

struct Utf8Sequence {
  std::size_t length;
  bool valid;
};

// The UTF-8 sequence at the start of a text, which must not be empty; a byte that begins no valid
// one stands alone.
inline Utf8Sequence ReadUtf8(std::string_view text) {
  const char* at = text.data();
  const auto code = boost::locale::utf::utf_traits<char>::decode(at, text.data() + text.size());
  if (!boost::locale::utf::is_valid_codepoint(code)) return {1, false};
  return {static_cast<std::size_t>(at - text.data()), true};
}

bool IsUtf8(std::string_view text);

}  // namespace session
