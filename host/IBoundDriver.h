#pragma once

#include "host/HostApi.h"
#include "host/IBindMessage.h"
#include "host/ICmdReturn.h"
#include "host/ITqObject.h"
#include "host/TqTypes.h"

#include <string>

// A driver as the other end of its bindings sees it. The order of the operations is part of the
// binary interface: a driver's primary table begins with these.
class HOST_API IBoundDriver : public ITqObject {
 public:
  // A message has come from the other end of a binding. It and `ret`, the place for the answer, are
  // borrowed for the call; `ret` may be null.
  virtual void BoundCall(unsigned long bindingId, BindingType type, const std::string& className,
                         const IBindMessage& msg, ICmdReturn* ret) = 0;

  // A binding has been made or broken.
  virtual void OnBindingChanged(unsigned long bindingId, const std::string& className,
                                bool bound) = 0;

 protected:
  ~IBoundDriver() = default;
};
