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

// The parameters in the order of the message. A name can occur more than once.
using Params = std::vector<Param>;

}  // namespace standin
