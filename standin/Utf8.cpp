#include "standin/Utf8.h"

namespace standin {

Utf8Sequence ReadUtf8(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0xC2 || lead > 0xF4) return {1, lead < 0x80};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // The limits of the second byte keep out overlong forms, surrogates and what is beyond U+10FFFF.
  unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    if (next < low || next > high) return {i, false};
    low = 0x80;
    high = 0xBF;
  }
  return {length, true};
}

}  // namespace standin
