#pragma once

#include "host/HostApi.h"

// Gives drivers the host's services. Outlives every driver that was created with it.
class HOST_API IInstanceManager {
 public:
  // Stores the service registered under `guid` in `*out`, null when there is none. The service is
  // borrowed: it is not released by the caller. Returns whether there is one.
  virtual bool GetInstance(const char* guid, void** out) = 0;

 protected:
  ~IInstanceManager() = default;
};
