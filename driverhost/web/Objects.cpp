#include "driverhost/web/Objects.h"

#include <nlohmann/json.hpp>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

std::string Text(const Json& object) {
  return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string AboutObject(const About& about) {
  return Text({{"registered", about.registered},
               {"file", about.file},
               {"reads", about.reads},
               {"labels", about.labels},
               {"notify", about.notify}});
}

std::string EndObject(const std::string& why) { return Text({{"ended", "driver"}, {"text", why}}); }

std::string MissingObject(std::uint64_t count) { return Text({{"missing", count}}); }

std::string ErrorObject(const std::string& text) { return Text({{"error", text}}); }

}  // namespace driverhost
