#pragma once

#include <stdexcept>
#include <string>
#include <typeinfo>

namespace standin {

// Casts an interface to the stand-in's own class behind it. The stand-in can use only objects that
// it has made: for any other, this throws std::logic_error, whose text calls the object `what`.
template <class Own, class Interface>
Own& OwnOf(Interface& object, const char* what) {
  if (typeid(object) == typeid(Own)) return static_cast<Own&>(object);
  throw std::logic_error(std::string("the host was handed ") + what + " that it has not made");
}

}  // namespace standin
