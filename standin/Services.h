#pragma once

#include "host/IHostPaths.h"
#include "host/IInstanceManager.h"
#include "host/IRoomOutputs.h"
#include "standin/Factory.h"
#include "standin/HostObject.h"
#include "standin/Observer.h"

#include <atomic>
#include <bitset>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace standin {

// What a host keeps for its driver; the base classes reach it through their instance manager.
class Services final : public IInstanceManager, public IHostPaths, public IRoomOutputs {
 public:
  struct Variable {
    std::string name;
    std::string value;
  };

  Services(Observer& sink, std::optional<std::string> root);
  ~Services();
  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;

  // Throws std::logic_error for an instance manager that is not the stand-in's.
  static Services& Of(IInstanceManager& im);

  // Those that were made last of all that there are; null when there are none. Requires a Lock, as
  // long as they are used.
  static Services* Newest();

  // Whether the factory of the host whose call runs on this thread has to fail.
  static bool Fails(Factory factory);

  void Tell(Hint hint, const std::string& what);

  // Whether the driver has registered a handler.
  bool HasHandler() const;

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

  bool creating = true;              // the driver's constructor has not returned
  bool variablesRegistered = false;  // the base class's Initialize was called

  // Of the call into the driver.
  std::atomic<std::thread::id> thread = std::this_thread::get_id();
  const std::string* request = nullptr;  // as in Call.h
  HostObject* released = nullptr;        // the last that lost its references in the call

 private:
  std::optional<std::string> m_ImageRoot;
};

}  // namespace standin
