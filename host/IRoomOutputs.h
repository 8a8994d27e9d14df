#pragma once

#include "host/HostApi.h"

// The service that knows which output serves which room. The order of the operations is part of the
// binary interface.
class HOST_API IRoomOutputs {
 public:
  // The output number for a room. What `kind` selects is up to the host; drivers pass 2. The
  // stand-in answers 0 for a room that it does not know.
  virtual unsigned long GetOutputForRoom(unsigned long roomId, int kind) = 0;

 protected:
  ~IRoomOutputs() = default;
};
