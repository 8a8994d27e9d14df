#include "players/mpd/SessionLine.h"

#include <glib.h>
#include <modp_b64.h>
#include <nlohmann/json.hpp>

#include <stdexcept>

namespace mpdplayer {

std::string EncodeBase64(const std::string& bytes) {
  std::string text(modp_b64_encode_len(bytes.size()), '\0');
  text.resize(modp_b64_encode(text.data(), bytes.data(), bytes.size()));
  return text;
}

std::string NotifyLine(const std::string& name, const Params& params) {
  nlohmann::ordered_json texts = nlohmann::ordered_json::object();
  for (const auto& [key, value] : params) {
    if (g_utf8_validate_len(value.data(), value.size(), nullptr) == TRUE) {
      texts[key] = value;
    } else {
      texts[key]["bytes"] = EncodeBase64(value);
    }
  }
  nlohmann::ordered_json line;
  line["notify"] = name;
  line["params"] = std::move(texts);
  return line.dump();
}

std::string BytesOf(const nlohmann::json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_object() || value.size() != 1 || !value.contains("bytes") ||
      !value["bytes"].is_string()) {
    throw std::invalid_argument("must be a text");
  }
  const auto text = value["bytes"].get<std::string>();
  std::string bytes(modp_b64_decode_len(text.size()), '\0');
  const std::size_t length = modp_b64_decode(bytes.data(), text.data(), text.size());
  if (length == static_cast<std::size_t>(-1))
    throw std::invalid_argument("has bytes that are not base64");
  bytes.resize(length);
  return bytes;
}

}  // namespace mpdplayer
