#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <utility>
#include <vector>

namespace mpdplayer {

using Params = std::vector<std::pair<std::string, std::string>>;

// The session line that notifies the driver, without a line's end. Values may be any bytes.
std::string NotifyLine(const std::string& name, const Params& params);

std::string EncodeBase64(const std::string& bytes);

// The bytes of a JSON text or of {"bytes": BASE64}. Throws std::invalid_argument on anything else.
std::string BytesOf(const nlohmann::json& value);

}  // namespace mpdplayer
