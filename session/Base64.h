#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace session {

// Base64 text (RFC 4648, section 4) without line breaks.
std::string EncodeBase64(std::string_view bytes);

// The bytes that such a text stands for; nothing for any other text.
std::optional<std::string> DecodeBase64(std::string_view text);

}  // namespace session
