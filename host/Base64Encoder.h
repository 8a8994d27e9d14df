#pragma once

#include "host/HostApi.h"

#include <string>

// Decodes base64. A driver makes one for each use.
class HOST_API Base64Encoder {
 public:
  Base64Encoder();
  virtual ~Base64Encoder();

  // The bytes that base64 text stands for (RFC 4648, section 4). The stand-in requires the padding,
  // allows blanks, tabs and line breaks between the characters, and returns nothing for any other
  // text.
  std::string Base64Decode(const std::string& text);
};
