#pragma once

#include <string>
#include <vector>

namespace driverhost {

// A stack in words, innermost function first, up to where `program` itself called: "Light::Toggle()
// light.cpp:84". `addresses` are hexadecimal, `maps` is the process's /proc/PID/maps. Without
// names, "light.so+0x1234". A function that calls itself stands once.
std::vector<std::string> StackLines(const std::string& addresses, const std::string& maps,
                                    const std::string& program);

}  // namespace driverhost
