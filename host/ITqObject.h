#pragma once

#include "host/HostApi.h"

#include <string>

// What most of the interfaces of a driver begin with.
class HOST_API ITqObject {
 public:
  // The count of references afterwards. An object starts with one, its maker's; Release of the last
  // one destroys the object.
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // Stores the named interface of the same object in `*out`, null when it has none by that name.
  // Takes no reference. Returns whether there is one.
  virtual bool QueryInterface(const std::string& name, void** out) = 0;

 protected:
  ~ITqObject() = default;
};
