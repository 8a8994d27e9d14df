#pragma once

#include "host/IHostPaths.h"
#include "host/IInstanceManager.h"
#include "host/IRoomOutputs.h"
#include "standin/Factory.h"
#include "standin/Observer.h"
#include "standin/Remains.h"

#include <bitset>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace standin {

// What a host keeps for its driver; the base classes reach it through their instance manager.
class Services final : public IInstanceManager, public IHostPaths, public IRoomOutputs {
 public:
  struct Variable {
    std::string name;
    std::string value;
  };

  // While a Scope exists, Current() returns its services. A host makes one for each call into its
  // driver.
  class Scope {
   public:
    explicit Scope(Services& services);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    Services* m_Previous;
  };

  Services(Observer& sink, std::optional<std::string> root);

  static Services& Of(IInstanceManager& im);  // as in OwnOf.h

  // The services of the host that is calling its driver; null outside such a call.
  static Services* Current();

  // Whether the factory of the current host has to fail.
  static bool Fails(Factory factory);

  bool GetInstance(const char* guid, void** out) override;
  const std::string& GetRootPath() override;
  unsigned long GetOutputForRoom(unsigned long roomId, int kind) override;

  Observer& observer;
  // Capabilities of the device that Bind is about to bind.
  std::map<std::string, std::string> offered;
  // Capabilities of the bound device.
  std::map<std::string, std::string> capabilities;
  std::map<unsigned long, std::string> bindings;
  std::map<unsigned long, unsigned long> rooms;
  std::map<unsigned long, Variable> variables;
  std::vector<std::string> registered;
  std::bitset<5> faults;
  Remains* dead = nullptr;  // until the current call into the driver is over

 private:
  std::optional<std::string> m_ImageRoot;
};

}  // namespace standin
