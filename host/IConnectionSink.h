#pragma once

#include "host/HostApi.h"
#include "host/ITqObject.h"
#include "host/TqTypes.h"

// Receives what comes over a driver's own connections. A proxy driver has none; its base class
// ignores all four. What is passed is borrowed for the call. The order of the operations is part of
// the binary interface.
class HOST_API IConnectionSink : public ITqObject {
 public:
  virtual void OnConnectionStatusChanged(unsigned long connectionId, int port, OStatus status) = 0;
  virtual void OnDataIn(unsigned long connectionId, int port, const unsigned char* data,
                        unsigned int size) = 0;
  virtual void OnPoll(unsigned long connectionId, int port) = 0;
  virtual void OnNetworkBound(unsigned long connectionId, long address) = 0;

 protected:
  ~IConnectionSink() = default;
};
