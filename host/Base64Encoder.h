#pragma once

#include "host/HostApi.h"

#include <string>

// Decodes base64. Made for one use and dropped.
class HOST_API Base64Encoder {
 public:
  Base64Encoder();
  virtual ~Base64Encoder();

  // The bytes that base64 text stands for (RFC 4648, section 4). The stand-in wants the padding,
  // lets blanks, tabs and line breaks pass between the characters, and returns nothing for any
  // other text.
  std::string Base64Decode(const std::string& text);
};
