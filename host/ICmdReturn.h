#pragma once

#include "host/HostApi.h"

// Where the answer to a command goes. A driver only passes the pointer on; it may be null.
class HOST_API ICmdReturn {
 protected:
  ~ICmdReturn() = default;
};
