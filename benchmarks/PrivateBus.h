#pragma once

#include "benchmarks/Pugixml.h"

#include <sys/types.h>

#include <cstddef>

struct DBusConnection;

// A message bus of our own with a process that listens on it.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  // Emits PropertiesChanged `times` times, with the values of `root` and below as properties, and
  // returns when the listener has read all of them.
  void Send(const Element& root, std::size_t times);

 private:
  pid_t m_Daemon = 0;
  pid_t m_Listener = 0;
  int m_Counted = -1;
  DBusConnection* m_Connection = nullptr;
};
