#pragma once

#include "host/HostApi.h"

// The place for the answer to a command. A driver only passes the pointer on; it may be null.
class HOST_API ICmdReturn {
 protected:
  ~ICmdReturn() = default;
};
