#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace driverhost {

// What the server itself tells its clients, as JSON.

// What a driver is: what it has registered, its file, the parameters that handlers have read by
// kind and name of their message ("notify NAME"), its labels by event, and whether notifications
// are taken.
struct About {
  std::vector<std::string> registered;
  std::string file;
  std::map<std::string, std::set<std::string>> reads;
  std::map<std::string, std::string> labels;
  bool notify = false;
};
std::string AboutObject(const About& about);

// The driver's life is over, and why, if it was not as it should be.
std::string EndObject(const std::string& why);

std::string MissingObject(std::uint64_t count);
std::string ErrorObject(const std::string& text);

}  // namespace driverhost
