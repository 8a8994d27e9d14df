#pragma once

#include "host/HostApi.h"
#include "host/auto_com.h"

#include <string>

// A command or a user-interface request. A handler borrows it for the call.
class HOST_API ICmdMessage {
 public:
  virtual unsigned long AddRef() = 0;
  virtual unsigned long Release() = 0;

  // A new message equal to this one, with one reference for the caller; empty when the host cannot
  // make one.
  virtual tq::auto_com<ICmdMessage> Clone() const = 0;

  // Adds a parameter behind those that are there. The types are the host's: "STRING", "INTEGER".
  virtual void AddParamText(const std::string& name, const std::string& type,
                            const std::string& value) = 0;
  virtual void AddParamNumber(const std::string& name, const std::string& type,
                              unsigned long value) = 0;

  virtual bool HasParam(const std::string& name) const = 0;

  // Decimal text up to its first other character; 0 for a missing parameter or none.
  virtual unsigned long GetParamNumber(const std::string& name) const = 0;

 protected:
  ~ICmdMessage() = default;
};
