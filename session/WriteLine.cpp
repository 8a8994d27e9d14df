#include "session/WriteLine.h"

#include "session/Base64.h"
#include "session/Legible.h"
#include "session/Utf8.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace session {

namespace {

using Json = nlohmann::ordered_json;

Json Text(std::string_view bytes) {
  if (IsUtf8(bytes)) return bytes;
  return {{"bytes", EncodeBase64(bytes)}};
}

// A text for each name, or what the name's value is as an integer. A name that is no text cannot
// have been read.
Json Members(const Params& params) {
  Json members = Json::object();
  for (const auto& [name, value, type] : params) {
    members[name] = type == "INTEGER" ? Json::parse(value) : Text(value);
  }
  return members;
}

struct Writer {
  Json operator()(const Destroy&) const { return {{"destroy", true}}; }
  Json operator()(const Start& start) const {
    Json line = {{"start", true}};
    if (start.config) line["config"] = Text(*start.config);
    if (start.state) line["state"] = Text(*start.state);
    return line;
  }
  Json operator()(const Notify& notify) const {
    if (notify.xml) return {{"notify", notify.name}, {"xml", Text(*notify.xml)}};
    return Named("notify", notify.name, notify.params);
  }
  Json operator()(const Command& command) const {
    return Named("command", command.name, command.params);
  }
  Json operator()(const Request& request) const {
    return Named("request", request.name, request.params);
  }
  Json operator()(const Bind& bind) const {
    Json line = WithClass("bind", bind.id, bind.className);
    if (!bind.capabilities.empty()) line["capabilities"] = Members(bind.capabilities);
    return line;
  }
  Json operator()(const Unbind& unbind) const {
    return WithClass("unbind", unbind.id, unbind.className);
  }
  Json operator()(const Rooms& rooms) const {
    Json outputs = Json::object();
    for (const auto& [room, output] : rooms.outputs) outputs[std::to_string(room)] = output;
    return {{"rooms", outputs}};
  }
  Json operator()(const Persist&) const { return {{"persist", true}}; }
  Json operator()(const Restart&) const { return {{"restart", true}}; }

 private:
  static Json Named(const char* kind, const std::string& name, const Params& params) {
    Json line = {{kind, name}};
    if (!params.empty()) line["params"] = Members(params);
    return line;
  }

  static Json WithClass(const char* kind, unsigned long id, const std::string& className) {
    Json line = {{kind, id}};
    if (!className.empty()) line["class"] = Text(className);
    return line;
  }
};

struct Title {
  std::string operator()(const Destroy&) const { return "destroy"; }
  std::string operator()(const Start&) const { return "create, initialize"; }
  std::string operator()(const Notify& notify) const { return "notify " + Short(notify.name); }
  std::string operator()(const Command& command) const { return "command " + Short(command.name); }
  std::string operator()(const Request& request) const { return "request " + Short(request.name); }
  std::string operator()(const Bind& bind) const { return "bind " + std::to_string(bind.id); }
  std::string operator()(const Unbind& unbind) const {
    return "unbind " + std::to_string(unbind.id);
  }
  std::string operator()(const Rooms&) const { return "rooms"; }
  std::string operator()(const Persist&) const { return "persist"; }
  std::string operator()(const Restart&) const { return "restart"; }

 private:
  static std::string Short(const std::string& name) { return Legible(name, 60); }
};

}  // namespace

std::string WriteLine(const Line& line) {
  Json json = std::visit(Writer(), line.action);
  if (line.at) json["at"] = *line.at;
  return json.dump();
}

std::string TitleOf(const Action& action) { return std::visit(Title(), action); }

}  // namespace session
