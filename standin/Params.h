#pragma once

#include <string>
#include <vector>

namespace standin {

// A parameter of a message.
struct Param {
  std::string name;
  std::string value;
  std::string type = "STRING";
};

// In the order of the message; a name may stand more than once.
using Params = std::vector<Param>;

}  // namespace standin
