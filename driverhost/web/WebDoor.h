#pragma once

#include "driverhost/web/Budget.h"
#include "driverhost/web/LineTurns.h"
#include "driverhost/web/ObjectStore.h"
#include "driverhost/web/WebClient.h"
#include "driverhost/web/WebRules.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace driverhost {

// What all connections share. Everything but the store and the flag belongs to the server's thread.
struct WebDoor {
  static constexpr std::uint64_t s_LongestLine = std::uint64_t{1} << 20U;

  const WebRules rules;
  LineTurns turns;
  std::function<void(const std::shared_ptr<WebClient>&)> enter;  // in the place of one that leaves
  std::shared_ptr<const std::string> about;                      // as an object
  ObjectStore store = {};
  Budget budget = {};
  std::atomic<bool> wanted = false;  // somebody has read all of the store
};

}  // namespace driverhost
