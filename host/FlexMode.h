#pragma once

#include "host/HostApi.h"

#include <string>

// Holds a list of modes, given and returned as comma-separated text.
class HOST_API FlexMode {
 public:
  FlexMode();
  virtual ~FlexMode();

  // Replaces the list.
  void SetModesList(const std::string& list);

  // The list as last set. Valid until the next SetModesList.
  const std::string& GetModesList() const;

 private:
  std::string m_List;
};
