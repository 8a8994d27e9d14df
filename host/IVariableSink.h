#pragma once

#include "host/HostApi.h"
#include "host/ITqObject.h"

#include <string>

// Receives the news of other drivers' state variables. The order of the operations is part of the
// binary interface.
class HOST_API IVariableSink : public ITqObject {
 public:
  // A state variable of a device has another value.
  virtual void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                                 const std::string& value) = 0;

  // As IDeviceCommon::GetDeviceId.
  virtual unsigned long GetDeviceId() const = 0;

 protected:
  ~IVariableSink() = default;
};
