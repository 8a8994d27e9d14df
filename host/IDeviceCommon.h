#pragma once

#include "host/HostApi.h"

#include <string>

// A driver's identity as a device. References and pointers that it returns belong to the driver and
// stay valid for its life. The order of the operations is part of the binary interface.
class HOST_API IDeviceCommon {
 public:
  // When to call it is up to the host; the stand-in never does.
  virtual void LateInitialize() = 0;
  // The driver's own device id; in the stand-in the one that Initialize was given, 0 before that.
  // The others say what the host knows of the device; in the stand-in they answer with empty text,
  // 0 and, for the state, null.
  virtual unsigned long GetDeviceId() const = 0;
  virtual const std::string& GetDeviceName() const = 0;
  virtual unsigned long GetDeviceType() const = 0;
  virtual const std::string* GetDeviceRoomNameAddr() const = 0;
  virtual const unsigned long* GetDeviceStateAddr() const = 0;
  // The device's room has a new name, which is borrowed for the call.
  virtual void OnRoomNameChanged(const std::string& roomName) = 0;

 protected:
  ~IDeviceCommon() = default;
};
