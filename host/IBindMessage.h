#pragma once

#include "host/HostApi.h"

#include <string>

// A message from or to the bound device. A handler borrows it for the call. The order of the
// operations is part of the binary interface.
class HOST_API IBindMessage {
 public:
  // Only auto_com calls these. Both return the number of references afterwards.
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // The whole message as XML text.
  virtual std::string GetXml() const = 0;

  // The command that the message carries, empty for a plain notification. Lives as long as the
  // message.
  virtual const std::string& GetCommand() const = 0;

  // The named parameter's text. The host decides how the two operations differ, and what they
  // return for a parameter that the message lacks; in the stand-in both do the same, and return
  // empty text then.
  virtual std::string GetParamText(const std::string& name) const = 0;
  virtual std::string GetParamValue(const std::string& name) const = 0;

 protected:
  ~IBindMessage() = default;
};
