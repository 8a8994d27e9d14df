#pragma once

#include "standin/HostObject.h"

namespace standin {

// A host object behind one of the interfaces that are counted.
template <class Interface>
class Counted : public Interface, public HostObject {
 public:
  unsigned long AddRef() override { return AddReference(); }
  unsigned long Release() override { return RemoveReference(); }

 protected:
  using HostObject::HostObject;
};

}  // namespace standin
