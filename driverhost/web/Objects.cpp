#include "driverhost/web/Objects.h"

#include <nlohmann/json.hpp>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

std::string Object(const char* key, Json value) {
  return Json{{key, std::move(value)}}.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string RegisteredObject(const std::vector<std::string>& lines) {
  return Object("registered", lines);
}

std::string MissingObject(std::uint64_t count) { return Object("missing", count); }

std::string ErrorObject(const std::string& text) { return Object("error", text); }

}  // namespace driverhost
