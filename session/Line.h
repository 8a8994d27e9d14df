#pragma once

#include "session/Params.h"

#include <map>
#include <optional>
#include <string>
#include <variant>

namespace session {

// What one line of a session asks of the host. Texts are bytes.

// What the driver is initialized with; only as the first line.
struct Start {
  std::optional<std::string> config = std::nullopt;
  std::optional<std::string> state = std::nullopt;
};
// A notification of the bound device.
struct Notify {
  std::string name;
  Params params;
  std::optional<std::string> xml;  // the whole message, instead of the parameters
};
struct Command {
  std::string name;
  Params params;
};
// A request of a user interface.
struct Request {
  std::string name;
  Params params;
};
struct Bind {
  unsigned long id;
  std::string className;
  Params capabilities;
};
struct Unbind {
  unsigned long id;
  std::string className;
};
// Each room's output.
struct Rooms {
  std::map<unsigned long, unsigned long> outputs;
};
struct Persist {};
struct Restart {};

// The last line that a driver gets; no session holds it.
struct Destroy {};

using Action =
    std::variant<Destroy, Start, Notify, Command, Request, Bind, Unbind, Rooms, Persist, Restart>;

struct Line {
  Action action;
  std::optional<double> at;  // seconds since the session's start
  // The texts that stand in files: for the name of each, the file's path as the line has it.
  std::map<std::string, std::string> files;
};

}  // namespace session
