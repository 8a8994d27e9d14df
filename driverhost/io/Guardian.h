#pragma once

#include <string>

namespace driverhost {

// Starts a process that outlives this one when somebody kills it: it then ends all that this one
// has started, in whatever session or group, and removes the directories below. When this process
// ends by itself, it ends, too. Once, before anything else is started.
void StartGuardian();

// A directory is removed with all that is in it when this process is killed; no longer.
void GuardDirectory(const std::string& path);
void LeaveDirectory(const std::string& path);

}  // namespace driverhost
