#pragma once

#include "host/HostApi.h"

#include <string>

// A driver's identity as a device. References and pointers that it returns are the driver's and
// valid for its life. The order of the operations is binary interface.
class HOST_API IDeviceCommon {
 public:
  // When it is called is up to the host. The stand-in never does.
  virtual void LateInitialize() = 0;
  // The id that Initialize was given; in the stand-in 0 before that. In the stand-in the others
  // answer with empty text, 0 and, for the state, null.
  virtual unsigned long GetDeviceId() const = 0;
  virtual const std::string& GetDeviceName() const = 0;
  virtual unsigned long GetDeviceType() const = 0;
  virtual const std::string* GetDeviceRoomNameAddr() const = 0;
  virtual const unsigned long* GetDeviceStateAddr() const = 0;
  // The room that the device stands in has another name.
  virtual void OnRoomNameChanged(const std::string& roomName) = 0;

 protected:
  ~IDeviceCommon() = default;
};
