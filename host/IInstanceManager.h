#pragma once

#include "host/HostApi.h"

// Gives drivers the host's services. Outlives every driver that was created with it. The order of
// the operations is binary interface.
class HOST_API IInstanceManager {
 public:
  // Stores the service registered under `guid` in `*out`; the caller does not release it. Without
  // one the stand-in stores null and returns false; a driver sets `*out` to null before, and looks
  // at it alone.
  virtual bool GetInstance(const char* guid, void** out) = 0;

 protected:
  ~IInstanceManager() = default;
};
