#pragma once

#include <stdexcept>
#include <string>
#include <typeinfo>

namespace standin {

// The stand-in's own object behind an interface. Throws std::logic_error, which calls it `what`,
// for an object of somebody else's making: the stand-in works only on objects that it has made.
template <class Own, class Interface>
Own& OwnOf(Interface& object, const char* what) {
  if (typeid(object) == typeid(Own)) return static_cast<Own&>(object);
  throw std::logic_error(std::string("the host was handed ") + what + " that it has not made");
}

}  // namespace standin
