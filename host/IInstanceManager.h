#pragma once

#include "host/HostApi.h"

// Gives drivers the host's services. Outlives every driver that was created with it. The order of
// the operations is part of the binary interface.
class HOST_API IInstanceManager {
 public:
  // Stores the service registered under `guid` in `*out`; the caller does not release it. If there
  // is none, the stand-in stores null and returns false. A driver sets `*out` to null before the
  // call and looks at it, not at the result.
  virtual bool GetInstance(const char* guid, void** out) = 0;

 protected:
  ~IInstanceManager() = default;
};
