#pragma once

#include "driverprocess/Connection.h"
#include "driverprocess/FileWatch.h"
#include "driverprocess/Leftovers.h"
#include "driverprocess/Reporter.h"
#include "session/Line.h"
#include "standin/Host.h"
#include "standin/Plugin.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace driverprocess {

struct LifeOptions {
  std::string plugin;
  unsigned long id = 1;
  std::string imageRoot;    // with its separator at the end
  bool lookAlways = false;  // for what the driver leaves in its process, after each step
};

// The life of one driver in this process: its library is loaded, it is created, gets one line after
// the other, is destroyed, its library is unloaded. Each step ends with the report that it is over.
class Life {
 public:
  // Borrowed; outlive the object.
  Life(Connection& connection, const LifeOptions& options);

  // Returns whether the driver is there. A library that cannot be loaded is reported.
  bool Begin(const session::Start& start);

  // Returns whether the driver has thrown nothing.
  bool Take(const session::Action& action);

  void End();

 private:
  // Makes a call into the driver and reports what it throws. Returns whether it threw nothing.
  bool Call(const std::function<void()>& call);
  void EndStep();
  void ReportRegistered();
  void ReportHeld();

  Connection& m_Connection;
  const LifeOptions& m_Options;
  Reporter m_Reporter{m_Connection};
  FileWatch m_Watch;
  Leftovers m_Leftovers;
  std::optional<standin::Plugin> m_Plugin;
  std::optional<standin::Host> m_Host;
  std::size_t m_Registered = 0;
};

}  // namespace driverprocess
