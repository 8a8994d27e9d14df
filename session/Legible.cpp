#include "session/Legible.h"

#include "session/Utf8.h"

#include <algorithm>
#include <cwchar>

namespace session {

namespace {

// C0, DEL, and C1, which terminals obey too.
bool IsControl(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  const bool c1 = first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
  return first < 0x20 || first == 0x7F || c1;
}

std::string Escape(std::string_view bytes) {
  static constexpr std::string_view known = "\n\r\t";
  static constexpr std::string_view letters = "nrt";
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string escape;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    const std::size_t at = known.find(c);
    escape += '\\';
    if (at != std::string_view::npos) {
      escape += letters[at];
    } else {
      escape += {'x', digits[byte >> 4U], digits[byte & 0xFU]};
    }
  }
  return escape;
}

// Requires: the character is valid UTF-8 and no control.
std::size_t Columns(std::string_view character) {
  if (character.size() == 1) return 1;
  std::mbstate_t state{};
  wchar_t code = 0;
  const std::size_t read = mbrtowc(&code, character.data(), character.size(), &state);
  const int columns = read == character.size() ? wcwidth(code) : 1;
  return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

std::string Fit(std::string_view text, std::size_t columns, const std::string& suffix) {
  std::string out;
  std::size_t used = 0;
  std::size_t kept = 0;  // so much fits with the suffix
  for (std::string_view rest = text; !rest.empty();) {
    const Utf8Sequence sequence = ReadUtf8(rest);
    const std::string_view character = rest.substr(0, sequence.length);
    const bool escaped = !sequence.valid || IsControl(character);
    const std::string piece = escaped ? Escape(character) : std::string(character);
    used += escaped ? piece.size() : Columns(character);
    if (used > columns) return out.substr(0, kept) + suffix;
    out += piece;
    if (used + suffix.size() <= columns) kept = out.size();
    rest.remove_prefix(character.size());
  }
  return out;
}

}  // namespace

std::string Legible(std::string_view text, std::size_t columns) {
  const std::string suffix = "... (" + std::to_string(text.size()) + " bytes)";
  return Fit(text, columns, suffix.size() * 2 <= columns ? suffix : "...");
}

std::string Quoted(std::string_view name) {
  constexpr std::size_t longest = 60;
  std::string quoted(1, '"');
  return quoted.append(Legible(name, longest)).append(1, '"');
}

std::string Cut(std::string_view text, std::size_t columns) { return Fit(text, columns, "..."); }

}  // namespace session
