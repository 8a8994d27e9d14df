#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace driverhost {

// What the server itself tells its clients.
std::string RegisteredObject(const std::vector<std::string>& lines);
std::string MissingObject(std::uint64_t count);
std::string ErrorObject(const std::string& text);

}  // namespace driverhost
