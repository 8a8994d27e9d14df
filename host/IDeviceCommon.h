#pragma once

#include "host/HostApi.h"

#include <string>

// A driver's identity as a device. The addresses stay valid for the life of the driver.
class HOST_API IDeviceCommon {
 public:
  virtual void LateInitialize() = 0;
  virtual unsigned long GetDeviceId() const = 0;
  virtual const std::string& GetDeviceName() const = 0;
  virtual unsigned long GetDeviceType() const = 0;
  virtual const std::string* GetDeviceRoomNameAddr() const = 0;
  virtual const unsigned long* GetDeviceStateAddr() const = 0;
  virtual void OnRoomNameChanged(const std::string& roomName) = 0;

 protected:
  ~IDeviceCommon() = default;
};
