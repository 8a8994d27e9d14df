#pragma once

#include "host/HostApi.h"
#include "host/ITqObject.h"

// Receives the events of other drivers. The order of the operations is part of the binary
// interface.
class HOST_API IEventSink : public ITqObject {
 public:
  // A driver has fired one of its events.
  virtual void OnEventFired(unsigned long driverId, unsigned long eventId) = 0;

 protected:
  ~IEventSink() = default;
};
