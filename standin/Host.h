#pragma once

#include "host/HostApi.h"
#include "host/IBindMessage.h"
#include "host/ICmdMessage.h"
#include "host/ICmdReturn.h"
#include "host/IDriver.h"
#include "host/TqBaseProxyDriver.h"
#include "host/auto_com.h"

#include <cstddef>
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

struct Param {
  std::string name;
  std::string value;
  std::string type = "STRING";
};
using Params = std::vector<Param>;

// Hears what a driver sends out, in the order in which it happens, from inside the call that causes
// it. Everything is borrowed for the call. What an observer throws passes through the driver.
class HOST_API Observer {
 public:
  enum class Change { Added, Changed, Removed };

  virtual ~Observer();

  // `value` is the one that the variable has then; for a removed one, the last.
  virtual void OnVariable(Change change, unsigned long id, const std::string& name,
                          const std::string& value) = 0;
  virtual void OnEvent(unsigned long id) = 0;
  virtual void OnUi(const std::string& xml) = 0;
  virtual void OnRooms(const std::string& command, const Params& params) = 0;
  virtual void OnDevice(unsigned long binding, const std::string& command, const Params& params,
                        const ICmdReturn* ret) = 0;
  // `xml` is null when nobody answered.
  virtual void OnAnswer(const std::string& request, const std::string* xml) = 0;
  // `xml` is null when the driver gave no state.
  virtual void OnState(const std::string* xml) = 0;
  virtual void OnLog(unsigned int level, const std::string& text) = 0;
};

// A loaded plug-in. Outlives the hosts that use it.
class HOST_API Plugin {
 public:
  // Throws std::runtime_error, whose text says why, when the file cannot be loaded, needs a symbol
  // that nobody has, or exports no GetCreationFunc.
  explicit Plugin(const std::string& file);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  CreationFunc GetCreationFunc() const;

 private:
  void* m_Library;
  CreationFunc (*m_Entry)();
};

// The messages to deliver; a host takes no others. One may be delivered any number of times. A
// notification's parameters take no type. Each has one reference, the caller's.
HOST_API tq::auto_com<IBindMessage> MakeNotification(const std::string& name, Params params);
// `xml` is the whole message: the children of its root are the parameters, and a root `command`
// with an attribute `name` makes it a message that carries that command. Text that does not parse
// makes a message without either.
HOST_API tq::auto_com<IBindMessage> MakeNotificationFromXml(const std::string& name,
                                                            std::string xml);
HOST_API tq::auto_com<ICmdMessage> MakeCommand(const std::string& name, Params params);

// From now on every parameter that a driver reads of a notification is added to `reads`, as
// "text NAME" or "value NAME" by the accessor; null stops. Borrowed until then; for the whole
// process.
HOST_API void RecordReads(std::vector<std::string>* reads);

// How many host objects are in somebody's hands, by kind, in the whole process.
struct Ledger {
  std::size_t nodes;
  std::size_t documents;
  std::size_t commandMessages;
  std::size_t bindMessages;

  std::size_t Total() const { return nodes + documents + commandMessages + bindMessages; }
  bool Empty() const { return Total() == 0; }
};
HOST_API Ledger GetLedger();

// The host's factories, for tests that make them yield nothing.
enum class Factory : unsigned { Node, Document, CommandMessage, Clone, BindMessage };

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

  // What the driver has registered, in that order: "notification NAME", "default notification",
  // "command NAME", "request NAME", "variable ID NAME" and the type and last arguments of VmAdd.
  const std::vector<std::string>& Registered() const;

  // The driver, for calls that this class has no operation for. Belongs to the host.
  IDriver& Driver();
  TqBaseProxyDriver& Object();

 private:
  std::unique_ptr<Services> m_Services;
  tq::auto_com<IDriver> m_Driver;
};

}  // namespace standin
