#include "driverhost/Legible.h"

#include <algorithm>

namespace driverhost {

namespace {

// The length of the character at the head of `text`, which is not empty; 0 when it is not UTF-8.
std::size_t CharacterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // The first continuation byte keeps out longer forms than needed, surrogates and the far end.
  unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    if (next < low || next > high) return 0;
    low = 0x80;
    high = 0xBF;
  }
  return length;
}

// C0, DEL, and C1, which terminals obey too.
bool IsControl(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  const bool c1 = first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
  return first < 0x20 || first == 0x7F || c1;
}

void AppendEscape(std::string& out, std::string_view bytes) {
  static constexpr std::string_view known = "\n\r\t";
  static constexpr std::string_view letters = "nrt";
  static constexpr char digits[] = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    const std::size_t at = known.find(c);
    out += '\\';
    if (at != std::string_view::npos) {
      out += letters[at];
    } else {
      out += {'x', digits[byte >> 4U], digits[byte & 0xFU]};
    }
  }
}

}  // namespace

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string Legible(std::string_view text, std::size_t limit) {
  std::string out;
  std::string_view rest = text;
  for (std::size_t shown = 0; !rest.empty() && shown < limit; ++shown) {
    const std::size_t length = CharacterLength(rest);
    const std::string_view character = rest.substr(0, std::max<std::size_t>(length, 1));
    if (length == 0 || IsControl(character)) {
      AppendEscape(out, character);
    } else {
      out += character;
    }
    rest.remove_prefix(character.size());
  }
  if (!rest.empty()) out += "... (" + std::to_string(text.size()) + " bytes)";
  return out;
}

}  // namespace driverhost
