#pragma once

#include "host/HostApi.h"
#include "host/IDriver.h"

#include <string>

namespace standin {

// A loaded plug-in. It has to outlive the hosts that use it.
class HOST_API Plugin {
 public:
  // Throws std::runtime_error, whose text says why, when the file cannot be loaded, when a symbol
  // that it needs is missing, or when it exports no GetCreationFunc.
  explicit Plugin(const std::string& file);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  CreationFunc GetCreationFunc() const;

 private:
  void* m_Library;
  CreationFunc (*m_Entry)();
};

}  // namespace standin
