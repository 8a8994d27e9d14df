#pragma once

#include "host/IBindMessage.h"
#include "host/ICmdMessage.h"
#include "host/auto_com.h"

#include <map>
#include <string>
#include <variant>

namespace driverhost {

struct Notify {
  tq::auto_com<IBindMessage> message;
};
struct Execute {
  tq::auto_com<ICmdMessage> command;
};
struct Request {
  tq::auto_com<ICmdMessage> request;
};
struct Bind {
  unsigned long id;
  std::string className;
  std::map<std::string, std::string> capabilities;
};
struct Unbind {
  unsigned long id;
  std::string className;
};
struct Rooms {
  std::map<unsigned long, unsigned long> outputs;
};
struct Persist {};

// What one line of a session asks of the host. It can be run any number of times.
struct Step {
  unsigned long line = 0;
  // One legible line of bounded length: the kind, the name, the parameters.
  std::string title;
  std::variant<Notify, Execute, Request, Bind, Unbind, Rooms, Persist> call;
};

}  // namespace driverhost
