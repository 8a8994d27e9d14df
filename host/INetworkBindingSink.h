#pragma once

#include "host/HostApi.h"
#include "host/ITqObject.h"

// Receives the news of network bindings. The order of the operations is part of the binary
// interface.
class HOST_API INetworkBindingSink : public ITqObject {
 public:
  // A network binding has been made or broken.
  virtual void OnNetworkBindingChanged(unsigned long bindingId, bool bound) = 0;

 protected:
  ~INetworkBindingSink() = default;
};
