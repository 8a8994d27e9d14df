#pragma once

#include "host/HostApi.h"

#include <string>

namespace TqXML {

// An XML element: a name, a text value, and named values and children, which keep the order in
// which they were added. Texts are bytes, and are copied. The order of the operations is part of
// the binary interface.
class HOST_API INode {
 public:
  // Only auto_com calls this and Release. Both return the number of references afterwards; the
  // Release of the last one destroys the element and its children.
  virtual unsigned long AddRef() = 0;

  // Add a named value after all that was added so far. `value` may not be null. The stand-in writes
  // a named value as a child element, and a bool as True or False. A number would be taken for a
  // bool: make it a text first (tq::ToString).
  virtual void AddNamedValue(const std::string& name, const char* value) = 0;
  virtual void AddNamedValue(const std::string& name, const std::string& value) = 0;
  virtual void AddNamedValue(const std::string& name, bool value) = 0;

  // The element with its values and children as XML text. The stand-in writes U+FFFD for what XML
  // cannot hold.
  virtual std::string GetXmlString() const = 0;

  // Gives a new element from CreateXmlNode() its name, which is not empty, and its text value.
  // Called once for an element, before anything is added.
  virtual void SetNameValue(const std::string& name, const std::string& value) = 0;

  virtual unsigned long Release() = 0;

 protected:
  ~INode() = default;
};

}  // namespace TqXML
