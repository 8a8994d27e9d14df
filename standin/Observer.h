#pragma once

#include "host/HostApi.h"
#include "host/ICmdReturn.h"
#include "standin/Params.h"

#include <string>

namespace standin {

// Hears what a driver does, in the order in which it happens, from inside the call that causes it.
// Everything is borrowed for the call. What an observer throws goes through the driver and comes
// out of the host's operation. Only the driver's destructor, which removes its variables, has to
// catch what OnVariable throws.
class HOST_API Observer {
 public:
  enum class Change { Added, Changed, Removed };
  enum class Accessor { Text, Value };

  virtual ~Observer();

  // `value` is the variable's value after the change; for a removed variable, its last value.
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

  // The driver has done what no driver may; `what` says it: "a node was used ... after its last
  // reference". Does nothing unless overridden.
  virtual void OnMisuse(const std::string& what);

  // The driver reads a parameter of a notification with GetParamText or GetParamValue. `value` is
  // null when the notification has no such parameter. Does nothing unless overridden.
  virtual void OnRead(const std::string& notification, const std::string& parameter,
                      Accessor accessor, const std::string* value);
};

}  // namespace standin
