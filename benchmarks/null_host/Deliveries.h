#pragma once

#include <functional>
#include <string>
#include <vector>

namespace null_host {

// Delivers two messages of one name that differ in their texts.
struct Delivery {
  std::string name;
  std::function<void()> deliverTwo;
};

// Makes a driver and what delivers each message to it. Everything stays to the end.
std::vector<Delivery> Deliveries(const char* plugin);

}  // namespace null_host
