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
// and reports what comes out to an observer. Everything runs on the caller's thread. The process
// may use the stand-in on one thread at a time; a driver that uses it on threads of its own is
// reported, and does not break it. Texts are bytes; XML that leaves the stand-in is well-formed
// XML 1.0 in UTF-8.
namespace standin {

class Services;

// The host of one driver. The driver has to derive from TqBaseProxyDriver. An exception of the
// driver comes out of the operation that called it. After Destroy, call no operation that needs the
// driver.
class HOST_API Host {
 public:
  // Creates the driver, not yet initialized. `imageRoot` is what the path service answers, with its
  // separator at the end; without it the host has no path service. `plugin` and `observer` are
  // borrowed and outlive the host. Throws std::runtime_error when the plug-in makes no driver.
  Host(const Plugin& plugin, Observer& observer, std::optional<std::string> imageRoot);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // `config` and `state` are XML texts; without a state the driver is given none. Returns what the
  // driver answers: the base class's Initialize answers 0, or 1 when it was called before. Throws
  // std::invalid_argument, before the driver is called, when a text is no document.
  long Initialize(unsigned long id, const std::string& config = "<config/>",
                  const std::optional<std::string>& state = std::nullopt);

  // The bound device sends a notification.
  void Notify(const IBindMessage& notification);

  // Executes a command. `ret` may be null.
  void Execute(const ICmdMessage& command, ICmdReturn* ret = nullptr);

  // Makes a user-interface request.
  void Request(const ICmdMessage& request);

  // Make and break a binding to a device. When it is the binding to the driver's bound device,
  // ExtractCapability answers from `capabilities` from now on.
  void Bind(unsigned long bindingId, const std::string& className,
            std::map<std::string, std::string> capabilities);
  void Unbind(unsigned long bindingId, const std::string& className);

  // The bindings that exist, each with its class.
  const std::map<unsigned long, std::string>& Bindings() const;

  // Sets the output of each room for the room-output service. It answers 0 for a room that is not
  // named, and for any kind but 2.
  void SetRooms(std::map<unsigned long, unsigned long> outputs);

  // Asks the driver for the state that it wants kept over a restart: XML text for the Initialize of
  // the next driver, nothing when the driver gives none. The observer is told, too.
  std::optional<std::string> Persist();

  // Releases the driver, which destroys it. Does nothing when called again. A driver to which there
  // is another reference lives on, which is misuse: it may not use the host when that is gone.
  void Destroy();

  // With `fails`, the factory returns an empty holder from now on; without, it works again.
  void SetFault(Factory factory, bool fails);

  // What the driver has registered, in that order: "binding ID" for its bound device, "notification
  // NAME", "default notification", "command NAME", "request NAME", "variable ID NAME" and the type
  // and last arguments of VmAdd.
  const std::vector<std::string>& Registered() const;

  // The driver, for calls that this class has no operation for. Belongs to the host.
  IDriver& Driver();
  TqBaseProxyDriver& Object();

 private:
  void CheckBinding(unsigned long bindingId, bool bound);

  std::unique_ptr<Services> m_Services;
  tq::auto_com<IDriver> m_Driver;
};

}  // namespace standin
