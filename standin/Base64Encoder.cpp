#include "host/Base64Encoder.h"

#include <algorithm>

#include <modp_b64.h>

namespace {

// Empty when the text is not base64 from end to end.
std::string DecodeStrictly(const std::string& text) {
  std::string bytes(modp_b64_decode_len(text.size()), '\0');
  const std::size_t size = modp_b64_decode(bytes.data(), text.data(), text.size());
  bytes.resize(size == static_cast<std::size_t>(-1) ? 0 : size);
  return bytes;
}

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

Base64Encoder::Base64Encoder() = default;

Base64Encoder::~Base64Encoder() = default;

std::string Base64Encoder::Base64Decode(const std::string& text) {
  if (std::none_of(text.begin(), text.end(), IsSpace)) return DecodeStrictly(text);
  std::string solid(text.size(), '\0');
  solid.erase(std::remove_copy_if(text.begin(), text.end(), solid.begin(), IsSpace), solid.end());
  return DecodeStrictly(solid);
}
