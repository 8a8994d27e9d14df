#pragma once

#include "host/HostApi.h"

#include <string>

namespace TqXML {

// An XML element: a name, a text value, and named values and children in the order of adding.
// Texts are byte strings; how the host writes a byte that XML cannot hold is the host's.
class HOST_API INode {
 public:
  virtual unsigned long AddRef() = 0;

  // Adds a named value behind all values and children added so far. `value` may not be null.
  virtual void AddNamedValue(const std::string& name, const char* value) = 0;
  virtual void AddNamedValue(const std::string& name, const std::string& value) = 0;
  virtual void AddNamedValue(const std::string& name, bool value) = 0;

  // The element with its values and children as XML text.
  virtual std::string GetXmlString() const = 0;

  // Names a nameless element. Requires: the element has no name yet, and `name` is not empty.
  virtual void SetNameValue(const std::string& name, const std::string& value) = 0;

  virtual unsigned long Release() = 0;

 protected:
  ~INode() = default;
};

}  // namespace TqXML
