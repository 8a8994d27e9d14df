#pragma once

#include "host/HostApi.h"

#include <string>

// Holds a list of modes, given and returned as comma-separated text.
class HOST_API FlexMode {
 public:
  // In the stand-in the list is empty at first.
  FlexMode();
  virtual ~FlexMode();

  // Replaces the list; the text is copied.
  void SetModesList(const std::string& list);

  // The list as last set; in the stand-in byte for byte. Valid until the next SetModesList.
  const std::string& GetModesList() const;

 private:
  std::string m_List;
};
