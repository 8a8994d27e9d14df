#pragma once

#include "host/HostApi.h"
#include "host/auto_com.h"

#include <string>

// A command or a user-interface request. A handler borrows it for the call. The order of the
// operations is part of the binary interface.
class HOST_API ICmdMessage {
 public:
  // Only auto_com calls these. Both return the number of references afterwards.
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // A new message equal to this one, with one reference for the caller; empty when the host cannot
  // make one.
  virtual tq::auto_com<ICmdMessage> Clone() const = 0;

  // Add a parameter after those that are there; the texts are copied. Drivers use the types
  // "STRING" and "INTEGER".
  virtual void AddParamText(const std::string& name, const std::string& type,
                            const std::string& value) = 0;
  virtual void AddParamNumber(const std::string& name, const std::string& type,
                              unsigned long value) = 0;

  // Whether there is a parameter of that name.
  virtual bool HasParam(const std::string& name) const = 0;

  // The parameter as a number. The stand-in reads decimal digits, as strtoul does, up to the first
  // other character; 0 when there is no digit or no such parameter.
  virtual unsigned long GetParamNumber(const std::string& name) const = 0;

 protected:
  ~ICmdMessage() = default;
};
