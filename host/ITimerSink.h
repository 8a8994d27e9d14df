#pragma once

#include "host/HostApi.h"

// Hears of timers that run out.
class HOST_API ITimerSink {
 public:
  virtual void OnTimerExpired(unsigned long timerId, long data) = 0;

 protected:
  ~ITimerSink() = default;
};
