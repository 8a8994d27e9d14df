#pragma once

#include "host/HostApi.h"

#include <string>

class HOST_API Base64Encoder {
 public:
  Base64Encoder();
  virtual ~Base64Encoder();

  // The bytes that base64 text (RFC 4648, section 4, padded) stands for; blanks, tabs and line
  // breaks may stand between the characters. Empty when the text is not valid.
  std::string Base64Decode(const std::string& text);
};
