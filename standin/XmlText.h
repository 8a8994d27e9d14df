#pragma once

#include <string>
#include <string_view>

namespace standin {

// These append to XML text so that it stays well-formed whatever the bytes are. A conforming parser
// reads back the same characters, but for U+FFFD in place of what XML cannot hold: control
// characters, U+FFFE, U+FFFF, and bytes that are not UTF-8 (one for each maximal part of a broken
// sequence, as in section 3.9 of the Unicode standard).
void AppendText(std::string& xml, std::string_view text);

// ` name="text"`, where `name` is a valid one.
void AppendAttribute(std::string& xml, std::string_view name, std::string_view text);

// Element names are kept to the ASCII characters that XML allows in them; the others become '_'.
void AppendName(std::string& xml, std::string_view name);

// An element with nothing but a text in it; empty for an empty text.
void AppendElement(std::string& xml, std::string_view name, std::string_view text);

}  // namespace standin
