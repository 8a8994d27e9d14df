#include "host/Base64Encoder.h"

#include <modp_b64.h>

#include <algorithm>

namespace {

// Returns false and leaves `bytes` empty when not all of the text is valid base64.
bool DecodeStrictly(const std::string& text, std::string& bytes) {
  bytes.resize(modp_b64_decode_len(text.size()));
  const std::size_t size = modp_b64_decode(bytes.data(), text.data(), text.size());
  const bool valid = size != static_cast<std::size_t>(-1);
  bytes.resize(valid ? size : 0);
  return valid;
}

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

Base64Encoder::Base64Encoder() = default;

Base64Encoder::~Base64Encoder() = default;

// Most texts have no spaces, so it first tries to decode the text as it is.
std::string Base64Encoder::Base64Decode(const std::string& text) {
  std::string bytes;
  if (DecodeStrictly(text, bytes)) return bytes;
  std::string solid(text.size(), '\0');
  solid.erase(std::remove_copy_if(text.begin(), text.end(), solid.begin(), IsSpace), solid.end());
  DecodeStrictly(solid, bytes);
  return bytes;
}
