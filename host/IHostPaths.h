#pragma once

#include "host/HostApi.h"

#include <string>

// The host's directories; the service registered under "{311BE68F-E34E-4ED2-9D6F-39AC29384C02}".
// The order of the operations is binary interface.
class HOST_API IHostPaths {
 public:
  // The image root, with a path separator at its end: user interfaces are sent paths of files below
  // it. Belongs to the service.
  virtual const std::string& GetRootPath() = 0;

 protected:
  ~IHostPaths() = default;
};
