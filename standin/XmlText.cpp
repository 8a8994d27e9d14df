#include "standin/XmlText.h"

#include "standin/Services.h"
#include "standin/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace standin {

using namespace std::literals;

namespace {

constexpr std::string_view s_Replacement = "\xEF\xBF\xBD";

// Whether XML can hold the character that the sequence stands for.
bool IsCharacter(std::string_view sequence) {
  return sequence != "\xEF\xBF\xBE" && sequence != "\xEF\xBF\xBF";
}

// How a byte is written: as it is, as another text in its place, or as part of the UTF-8 sequence
// that it begins.
enum class Writing : unsigned char { Same, InPlace, Sequence };

struct Escapes {
  std::array<Writing, 256> writing{};
  std::array<std::string_view, 128> inPlace{};

  constexpr Escapes() {
    for (std::size_t c = 0; c < 256; ++c) {
      if (c < 0x20) {
        Set(c, s_Replacement);
      } else if (c >= 0x80) {
        writing[c] = Writing::Sequence;
      }
    }
    writing['\t'] = writing['\n'] = Writing::Same;
    Set('\r', "&#13;");
    Set('&', "&amp;");
    Set('<', "&lt;");
    Set('>', "&gt;");
  }

 private:
  constexpr void Set(std::size_t c, std::string_view text) {
    writing[c] = Writing::InPlace;
    inPlace[c] = text;
  }
};

constexpr Escapes s_Escapes;

// How many bytes from the start of `text` are written as they are.
std::size_t PlainLength(std::string_view text) {
  const auto writing = [](char c) { return s_Escapes.writing[static_cast<unsigned char>(c)]; };
  const auto isOther = [=](char c) { return writing(c) != Writing::Same; };
  for (const char* at = text.begin();;) {
    at = std::find_if(at, text.end(), isOther);
    const auto length = static_cast<std::size_t>(at - text.begin());
    if (at == text.end() || writing(*at) == Writing::InPlace) return length;
    const Utf8Sequence sequence = ReadUtf8(text.substr(length));
    if (!sequence.valid || !IsCharacter(text.substr(length, sequence.length))) return length;
    at += sequence.length;
  }
}

constexpr bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr std::array<bool, 256> NameBytes() {
  std::array<bool, 256> bytes{};
  for (std::size_t i = 0; i < 256; ++i) {
    const char c = static_cast<char>(i);
    bytes[i] = IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
  }
  return bytes;
}
constexpr auto s_NameBytes = NameBytes();

bool IsNameByte(char c) { return s_NameBytes[static_cast<unsigned char>(c)]; }

bool IsName(std::string_view name) {
  std::size_t valid = 0;
  while (valid < name.size() && IsNameByte(name[valid])) ++valid;
  return valid > 0 && valid == name.size() && IsNameStart(name[0]);
}

template <class... Pieces>
void Append(std::string& xml, Pieces... pieces) {
  (xml.append(pieces), ...);
}

}  // namespace

void AppendText(std::string& xml, std::string_view text) {
  for (;;) {
    const std::size_t plain = PlainLength(text);
    xml += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return;
    const auto byte = static_cast<unsigned char>(text[0]);
    const bool inPlace = s_Escapes.writing[byte] == Writing::InPlace;
    xml += inPlace ? s_Escapes.inPlace[byte] : s_Replacement;
    text.remove_prefix(inPlace ? 1 : ReadUtf8(text).length);
  }
}

// A parser turns a tab or line break in an attribute into a blank, unless it is written as a
// character reference.
void AppendAttribute(std::string& xml, std::string_view name, std::string_view text) {
  xml.append(" ").append(name).append("=\"");
  for (;;) {
    const std::size_t plain = std::min(text.find_first_of("\"\t\n"), text.size());
    AppendText(xml, text.substr(0, plain));
    if (plain == text.size()) break;
    xml += text[plain] == '"' ? "&#34;" : text[plain] == '\t' ? "&#9;" : "&#10;";
    text.remove_prefix(plain + 1);
  }
  xml += '"';
}

void AppendName(std::string& xml, std::string_view name) {
  if (IsName(name)) {
    xml += name;
    return;
  }
  if (name.empty() || !IsNameStart(name[0])) {
    xml += '_';
    if (!name.empty() && !IsNameByte(name[0])) name.remove_prefix(1);
  }
  for (const char c : name) xml += IsNameByte(c) ? c : '_';
}

std::string NameForDriver(std::string_view name) {
  std::string valid;
  AppendName(valid, name);
  Services* services = valid == name ? nullptr : Call::Current();
  if (services) {
    services->Tell(Hint::ElementName, '"' + std::string(name) + "\" is no name of an element: \"" +
                                          valid + "\" is written");
  }
  return valid;
}

void AppendElement(std::string& xml, std::string_view name, std::string_view text) {
  if (!IsName(name)) {
    std::string valid;
    AppendName(valid, name);
    AppendElement(xml, valid, text);
  } else if (text.empty()) {
    Append(xml, "<"sv, name, "/>"sv);
  } else if (PlainLength(text) == text.size()) {
    Append(xml, "<"sv, name, ">"sv, text, "</"sv, name, ">"sv);
  } else {
    Append(xml, "<"sv, name, ">"sv);
    AppendText(xml, text);
    Append(xml, "</"sv, name, ">"sv);
  }
}

}  // namespace standin
