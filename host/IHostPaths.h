#pragma once

#include "host/HostApi.h"

#include <string>

// The host's directories; the service registered under "{311BE68F-E34E-4ED2-9D6F-39AC29384C02}".
// The order of the operations is part of the binary interface.
class HOST_API IHostPaths {
 public:
  // The image root: the directory of the files whose paths user interfaces are sent. It ends with a
  // path separator. The text belongs to the service.
  virtual const std::string& GetRootPath() = 0;

 protected:
  ~IHostPaths() = default;
};
