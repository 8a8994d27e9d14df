#include "host/Base64Encoder.h"

#include <modp_b64.h>

#include <algorithm>

namespace {

// False when the text is not base64 from end to end.
bool DecodeStrictly(const std::string& text, std::string& bytes) {
  bool valid = false;
  bytes.resize_and_overwrite(modp_b64_decode_len(text.size()), [&](char* decoded, std::size_t) {
    const std::size_t size = modp_b64_decode(decoded, text.data(), text.size());
    valid = size != static_cast<std::size_t>(-1);
    return valid ? size : 0;
  });
  return valid;
}

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

Base64Encoder::Base64Encoder() = default;

Base64Encoder::~Base64Encoder() = default;

// Most texts have no spaces: they are looked for when the text is not valid as it is.
std::string Base64Encoder::Base64Decode(const std::string& text) {
  std::string bytes;
  if (DecodeStrictly(text, bytes)) return bytes;
  std::string solid(text.size(), '\0');
  solid.erase(std::remove_copy_if(text.begin(), text.end(), solid.begin(), IsSpace), solid.end());
  DecodeStrictly(solid, bytes);
  return bytes;
}
