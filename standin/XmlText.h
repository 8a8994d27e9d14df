#pragma once

#include <string>
#include <string_view>

namespace standin {

// These append to XML text. The text stays well-formed whatever the bytes are, and a parser reads
// the same characters back. What XML cannot hold becomes U+FFFD: control characters, U+FFFE,
// U+FFFF, and bytes that are not UTF-8 (one U+FFFD for each broken sequence that ReadUtf8 finds).
void AppendText(std::string& xml, std::string_view text);

// Appends ` name="text"`. The name has to be a valid one.
void AppendAttribute(std::string& xml, std::string_view name, std::string_view text);

// Appends an element name. Every byte that is not an ASCII character that XML allows in a name
// becomes '_'.
void AppendName(std::string& xml, std::string_view name);

// The name as AppendName writes it, for a driver: the observer hears of a name that is none.
std::string NameForDriver(std::string_view name);

// Appends `<name>text</name>`, or `<name/>` for an empty text.
void AppendElement(std::string& xml, std::string_view name, std::string_view text);

}  // namespace standin
