#include "driverprocess/Delivery.h"

#include "standin/Messages.h"

#include <variant>

namespace driverprocess {

namespace {

standin::Params ToHost(const session::Params& params) {
  standin::Params own;
  own.reserve(params.size());
  for (const auto& [name, value, type] : params) own.push_back({name, value, type});
  return own;
}

struct Call {
  standin::Host& host;

  void operator()(const session::Notify& line) const {
    const auto message = line.xml ? standin::MakeNotificationFromXml(line.name, *line.xml)
                                  : standin::MakeNotification(line.name, ToHost(line.params));
    host.Notify(*message);
  }
  void operator()(const session::Command& line) const {
    host.Execute(*standin::MakeCommand(line.name, ToHost(line.params)));
  }
  void operator()(const session::Request& line) const {
    host.Request(*standin::MakeCommand(line.name, ToHost(line.params)));
  }
  void operator()(const session::Bind& line) const {
    std::map<std::string, std::string> capabilities;
    for (const auto& [name, value, type] : line.capabilities) capabilities[name] = value;
    host.Bind(line.id, line.className, std::move(capabilities));
  }
  void operator()(const session::Unbind& line) const { host.Unbind(line.id, line.className); }
  void operator()(const session::Rooms& line) const { host.SetRooms(line.outputs); }
  void operator()(const session::Persist&) const { host.Persist(); }
  void operator()(const session::Start&) const {}
  void operator()(const session::Restart&) const {}
  void operator()(const session::Destroy&) const {}
};

}  // namespace

void Deliver(standin::Host& host, const session::Action& action) { std::visit(Call{host}, action); }

}  // namespace driverprocess
