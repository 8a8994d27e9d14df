#pragma once

#include <string>
#include <vector>

#include "tests/Bench.h"

// Every message that a driver takes, with `text` in its values.
struct Message {
  std::string what;
  Step step;
};
std::vector<Message> Messages(const std::string& text);
