#pragma once

#include "host/HostApi.h"

#include <string>

// A message from or to the bound device. A handler borrows it for the call.
class HOST_API IBindMessage {
 public:
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // The whole message as XML text.
  virtual std::string GetXml() const = 0;

  // The command that the message carries, empty for a plain notification. Lives as long as the
  // message.
  virtual const std::string& GetCommand() const = 0;

  // The named parameter's text. What a missing parameter yields is the host's.
  virtual std::string GetParamText(const std::string& name) const = 0;
  virtual std::string GetParamValue(const std::string& name) const = 0;

 protected:
  ~IBindMessage() = default;
};
