#pragma once

#include "host/HostApi.h"
#include "host/ITqObject.h"

// Hears of network bindings that are made or broken.
class HOST_API INetworkBindingSink : public ITqObject {
 public:
  virtual void OnNetworkBindingChanged(unsigned long bindingId, bool bound) = 0;

 protected:
  ~INetworkBindingSink() = default;
};
