#pragma once

#include "host/HostApi.h"

// The host's knowledge of which output serves which room.
class HOST_API IRoomOutputs {
 public:
  // The output number for a room. What `kind` selects is the host's; drivers pass 2.
  virtual unsigned long GetOutputForRoom(unsigned long roomId, int kind) = 0;

 protected:
  ~IRoomOutputs() = default;
};
