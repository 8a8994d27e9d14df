#pragma once

#include <stdexcept>
#include <string>
#include <typeinfo>

namespace standin {

// The stand-in's own class behind an object that the driver hands to an operation. The stand-in can
// use only what it has made: for anything else this throws std::logic_error. An object that is used
// after its last reference is reported.
template <class Own, class Interface>
Own& CheckedCast(Interface& object, const char* operation) {
  if (typeid(object) != typeid(Own)) {
    throw std::logic_error(std::string(operation) +
                           " was handed an object that the host has not made");
  }
  auto& own = static_cast<Own&>(object);
  own.CheckAlive(operation);
  return own;
}

}  // namespace standin
