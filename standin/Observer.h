#pragma once

#include "host/HostApi.h"
#include "host/ICmdReturn.h"
#include "standin/Params.h"

#include <string>

namespace standin {

// What is legal, but probably a mistake of the driver's or of who writes its messages.
enum class Hint {
  NoDocument,       // a text that is no XML, or has entities of its own, was read as XML
  ElementName,      // an element's name is no name in XML
  UnknownVariable,  // changed, or after Initialize removed, and not there
  VariableTwice,    // added, and there already
  VariableLeft,     // there after the driver's end
  SentInConstructor,
  BaseNotCalled,  // an override did not call the base class's Initialize or OnBindingChanged
  NoHandler,      // no notification, command or request has a handler after Initialize
  NoDeviceBound,  // a call to a binding where no device is bound
  OtherThread,    // an operation of the host was called from another thread than the host's
  OutsideCall,    // ... on the host's thread, while the host called nothing
};

// A driver's look at a message that it was handed, or at a copy.
struct Read {
  enum class Message { Notification, Command, Request };
  // Whole: as XML text, or the message was passed on. The others are named as the operations are.
  enum class Accessor { Text, Value, Number, Has, Whole };

  Message message;
  const std::string& name;  // the message's
  Accessor accessor;
  const std::string& parameter;  // empty for Whole
  const std::string* value;      // null when the message has no such parameter, and for Whole
  bool isNumber;                 // for Number: the value is decimal digits alone, and not too large
};

// Hears what a driver does, in the order in which it happens, from inside the call that causes it.
// One operation runs at a time, on the thread that makes the host's calls; where the driver uses
// the host on threads of its own, the stand-in lets one thread in after the other. Everything is
// borrowed for the call. What an observer throws goes through the driver and comes out of the
// host's operation. Only the driver's destructor, which removes its variables, has to catch what
// OnVariable throws; OnMisuse and OnHint may not throw. An observer does not call the driver.
class HOST_API Observer {
 public:
  enum class Change { Added, Changed, Removed };

  virtual ~Observer();

  // `value` is the variable's value after the change; for a removed variable, its last value.
  virtual void OnVariable(Change change, unsigned long id, const std::string& name,
                          const std::string& value) = 0;
  // `label` is what the driver's GetEventLabel says, which is asked when the event is fired; empty
  // for a driver that does not override it, and on threads of the driver's own.
  virtual void OnEvent(unsigned long id, const std::string& label) = 0;
  virtual void OnUi(const std::string& xml) = 0;
  virtual void OnRooms(const std::string& command, const Params& params) = 0;
  virtual void OnDevice(unsigned long binding, const std::string& command, const Params& params,
                        const ICmdReturn* ret) = 0;
  // `xml` is null when nobody answered.
  virtual void OnAnswer(const std::string& request, const std::string* xml) = 0;
  // `xml` is null when the driver gave no state.
  virtual void OnState(const std::string* xml) = 0;
  virtual void OnLog(unsigned int level, const std::string& text) = 0;

  // The rest does nothing unless overridden.

  // The driver has done what no driver may; `what` says it: "a node was used ... after its last
  // reference (INode::AddNamedValue)".
  virtual void OnMisuse(const std::string& what);

  // `what` says it in words that are the same each time: "variable 77 was changed without having
  // been added". It holds the names that the driver gave, byte for byte.
  virtual void OnHint(Hint hint, const std::string& what);

  virtual void OnRead(const Read& read);
};

}  // namespace standin
