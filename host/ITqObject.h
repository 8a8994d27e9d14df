#pragma once

#include "host/HostApi.h"

#include <string>

// The operations that most interfaces of a driver begin with. The order of the operations is part
// of the binary interface.
class HOST_API ITqObject {
 public:
  // Both return the number of references afterwards. An object starts with one, which its maker
  // owns; the Release of the last one destroys it.
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // Stores the named interface of the same object in `*out` and returns whether there is one. The
  // stand-in knows none: it stores null.
  virtual bool QueryInterface(const std::string& name, void** out) = 0;

 protected:
  ~ITqObject() = default;
};
