#pragma once

#include <string>
#include <vector>

namespace session {

// A parameter of a message, in bytes.
struct Param {
  std::string name;
  std::string value;
  std::string type = "STRING";
};

// The parameters in the order of the message. A name can occur more than once.
using Params = std::vector<Param>;

}  // namespace session
