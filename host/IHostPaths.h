#pragma once

#include "host/HostApi.h"

#include <string>

// The host's directories; registered under "{311BE68F-E34E-4ED2-9D6F-39AC29384C02}".
class HOST_API IHostPaths {
 public:
  // The image root: the directory, with a path separator at its end, below which lie the files
  // whose relative paths go to the user interfaces.
  virtual const std::string& GetRootPath() = 0;

 protected:
  ~IHostPaths() = default;
};
