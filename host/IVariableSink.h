#pragma once

#include "host/HostApi.h"
#include "host/ITqObject.h"

#include <string>

// Hears of the state variables of other drivers.
class HOST_API IVariableSink : public ITqObject {
 public:
  virtual void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                                 const std::string& value) = 0;
  virtual unsigned long GetDeviceId() const = 0;

 protected:
  ~IVariableSink() = default;
};
