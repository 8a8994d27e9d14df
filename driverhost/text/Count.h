#pragma once

#include <cstddef>
#include <string>

namespace driverhost {

// "1 line", "2 lines".
inline std::string Count(std::size_t number, const std::string& thing) {
  return std::to_string(number) + ' ' + thing + (number == 1 ? "" : "s");
}

}  // namespace driverhost
