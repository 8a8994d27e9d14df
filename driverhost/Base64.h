#pragma once

#include <string>

namespace driverhost {

// Base64 text (RFC 4648, section 4) without line breaks.
std::string EncodeBase64(const std::string& bytes);

}  // namespace driverhost
