#pragma once

#include "host/HostApi.h"
#include "host/IBindMessage.h"
#include "host/ICmdMessage.h"
#include "host/ICmdReturn.h"
#include "host/IDriver.h"
#include "host/TqBaseProxyDriver.h"
#include "host/auto_com.h"
#include "standin/Factory.h"
#include "standin/Observer.h"
#include "standin/Plugin.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// A stand-in for the controller's driver host: it loads a plug-in, delivers messages to its driver
// and tells an observer what comes out. Everything runs on the caller's thread, and only one thread
// of the process may be in here at a time. Texts are bytes; XML that leaves the stand-in is
// well-formed XML 1.0 in UTF-8.
namespace standin {

class Services;

// The part of a driver host that serves one driver, which derives from TqBaseProxyDriver. Calls
// into the driver let its exceptions through. After Destroy, no operation that calls the driver may
// be called.
class HOST_API Host {
 public:
  // Creates the driver, not yet initialized. `imageRoot` is what the path service answers, with its
  // separator at the end; without it the host has no path service. `plugin` and `observer` are
  // borrowed and outlive the host. Throws std::runtime_error when the plug-in makes none.
  Host(const Plugin& plugin, Observer& observer, std::optional<std::string> imageRoot);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Returns 0, or 1 for a driver that was initialized before.
  long Initialize(unsigned long id);

  // The bound device sends a notification.
  void Notify(const IBindMessage& notification);

  // Executes a command. `ret` may be null.
  void Execute(const ICmdMessage& command, ICmdReturn* ret = nullptr);

  // Makes a user-interface request.
  void Request(const ICmdMessage& request);

  // Makes a binding to a device, and breaks it. The device behind the driver's proxy binding states
  // these capabilities from now on.
  void Bind(unsigned long bindingId, const std::string& className,
            std::map<std::string, std::string> capabilities);
  void Unbind(unsigned long bindingId, const std::string& className);

  // The bindings that the base class knows to be made, each with its class.
  const std::map<unsigned long, std::string>& Bindings() const;

  // The outputs that the room-output service answers from now on for kind 2, the one that drivers
  // ask for; 0 for a room not named and for other kinds.
  void SetRooms(std::map<unsigned long, unsigned long> outputs);

  // Asks for the state to persist.
  void Persist();

  // Drops the driver's last reference. Nothing when it is gone already.
  void Destroy();

  // From now on the factory yields an empty holder, or works again.
  void SetFault(Factory factory, bool fails);

  // What the driver has registered, in that order: "binding ID" for its bound device, "notification
  // NAME", "default notification", "command NAME", "request NAME", "variable ID NAME" and the type
  // and last arguments of VmAdd.
  const std::vector<std::string>& Registered() const;

  // The driver, for calls that this class has no operation for. Belongs to the host.
  IDriver& Driver();
  TqBaseProxyDriver& Object();

 private:
  std::unique_ptr<Services> m_Services;
  tq::auto_com<IDriver> m_Driver;
};

}  // namespace standin
