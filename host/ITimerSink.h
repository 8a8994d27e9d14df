#pragma once

#include "host/HostApi.h"

// Receives the news of a driver's timers. The order of the operations is part of the binary
// interface.
class HOST_API ITimerSink {
 public:
  // A timer has run out.
  virtual void OnTimerExpired(unsigned long timerId, long data) = 0;

 protected:
  ~ITimerSink() = default;
};
