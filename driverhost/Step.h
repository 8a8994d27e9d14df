#pragma once

#include "host/IBindMessage.h"
#include "host/ICmdMessage.h"
#include "host/auto_com.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace driverhost {

struct Notify {
  std::string name;
  tq::auto_com<IBindMessage> message;
};
struct Execute {
  std::string name;
  tq::auto_com<ICmdMessage> command;
};
struct Request {
  std::string name;
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

// What one line of a session asks of the host. It can be run any number of times. Creation and
// destruction are steps without a line and without a call.
struct Step {
  std::string title;  // the kind and the name, legible and short: "notify NEW_LIST"
  // The line's text, without its line break; where it came from, as messages name it; its number
  // there. Borrowed from whoever read it.
  std::string_view text;
  std::string_view source;
  unsigned long line = 0;
  std::optional<double> at;  // seconds since the session's start
  // Each file that the line gives by its path, with the text that takes the path's place.
  std::map<std::string, std::string> files;
  std::string hint;  // what is hardly meant in the line, though it is legal; mostly empty
  std::variant<std::monostate, Notify, Execute, Request, Bind, Unbind, Rooms, Persist> call;
};

}  // namespace driverhost
