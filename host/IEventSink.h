#pragma once

#include "host/HostApi.h"
#include "host/ITqObject.h"

// Receives the events of other drivers.
class HOST_API IEventSink : public ITqObject {
 public:
  virtual void OnEventFired(unsigned long driverId, unsigned long eventId) = 0;

 protected:
  ~IEventSink() = default;
};
