#include "driverhost/Base64.h"

#include <modp_b64.h>

namespace driverhost {

std::string EncodeBase64(const std::string& bytes) {
  std::string text(modp_b64_encode_len(bytes.size()), '\0');
  text.resize(modp_b64_encode(text.data(), bytes.data(), bytes.size()));
  return text;
}

}  // namespace driverhost
