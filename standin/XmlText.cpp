#include "standin/XmlText.h"

#include <array>
#include <cstddef>

namespace standin {

namespace {

constexpr std::string_view s_Replacement = "\xEF\xBF\xBD";

struct Sequence {
  std::size_t length;
  bool valid;
};

// The UTF-8 sequence at the head of `text`, which is not empty, or the maximal part of one.
Sequence ReadSequence(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0xC2 || lead > 0xF4) return {1, lead < 0x80};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    if (next < low || next > high) return {i, false};
    low = 0x80;
    high = 0xBF;
  }
  const std::string_view sequence = text.substr(0, length);
  return {length, sequence != "\xEF\xBF\xBE" && sequence != "\xEF\xBF\xBF"};
}

// How a byte is written: as it is, in place of it, or by the sequence that it begins.
enum class Writing : unsigned char { Same, InPlace, Sequence };

struct Escapes {
  std::array<Writing, 256> writing{};
  std::array<std::string_view, 128> inPlace{};

  constexpr explicit Escapes(bool attribute) {
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
    if (attribute) {
      Set('\t', "&#9;");
      Set('\n', "&#10;");
      Set('"', "&quot;");
    }
  }

 private:
  constexpr void Set(std::size_t c, std::string_view text) {
    writing[c] = Writing::InPlace;
    inPlace[c] = text;
  }
};

void AppendEscaped(std::string& xml, std::string_view text, const Escapes& escapes) {
  std::size_t copied = 0;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const Writing writing = escapes.writing[byte];
    Sequence sequence{1, true};
    if (writing == Writing::Sequence) sequence = ReadSequence(text.substr(i));
    if (writing == Writing::InPlace || !sequence.valid) {
      xml.append(text, copied, i - copied);
      xml += writing == Writing::InPlace ? escapes.inPlace[byte] : s_Replacement;
      copied = i + sequence.length;
    }
    i += sequence.length;
  }
  xml.append(text, copied, text.size() - copied);
}

constexpr Escapes s_TextEscapes(false);
constexpr Escapes s_AttributeEscapes(true);

constexpr bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool IsName(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

}  // namespace

void AppendText(std::string& xml, std::string_view text) {
  AppendEscaped(xml, text, s_TextEscapes);
}

void AppendAttribute(std::string& xml, std::string_view name, std::string_view value) {
  xml += ' ';
  AppendName(xml, name);
  xml += "=\"";
  AppendEscaped(xml, value, s_AttributeEscapes);
  xml += '"';
}

void AppendName(std::string& xml, std::string_view name) {
  if (name.empty() || !IsNameStart(name[0])) {
    xml += '_';
    if (!name.empty() && !IsName(name[0])) name.remove_prefix(1);
  }
  for (const char c : name) xml += IsName(c) ? c : '_';
}

void AppendElement(std::string& xml, std::string_view name, std::string_view text) {
  xml += '<';
  AppendName(xml, name);
  if (text.empty()) {
    xml += "/>";
    return;
  }
  xml += '>';
  AppendText(xml, text);
  xml += "</";
  AppendName(xml, name);
  xml += '>';
}

}  // namespace standin
