#include "fuzz/Input.h"
#include "tests/bench/Bench.h"

static standin::Params AnyParams(Input& input) {
  standin::Params params;
  while (input.Byte() == '=') params.push_back({input.Text(), input.Text()});
  return params;
}

// Each other letter of an input is a notification with all its parameters.
static void Deliver(standin::Host& host, Input& input) {
  const unsigned char kind = input.Byte();
  const std::string name = kind >= 'a' ? input.Text() : "";
  switch (kind) {
    case 'n': return host.Notify(*standin::MakeNotification(name, AnyParams(input)));
    case 'x': return host.Notify(*standin::MakeNotificationFromXml(name, input.Text()));
    case 'c': return host.Execute(*standin::MakeCommand(name, AnyParams(input)));
    case 'r': return host.Request(*standin::MakeCommand(name, AnyParams(input)));
    case 'b': return host.Bind(name.size() % 2 == 0 ? 5001 : 5002, name, {{input.Text(), input.Text()}});
    case 'u': return host.Unbind(5001, name);
    case 'o': return host.SetRooms({{input.Byte(), input.Byte()}});
    case 'p': host.Persist(); return;
    case 'f': return host.SetFault(static_cast<standin::Factory>(input.Byte() % 5), name.empty());
  }
  static const auto notifications = ReadNotifications();
  const Notification& known = notifications[kind % notifications.size()];
  host.Notify(*standin::MakeNotification(known.name, known.Params([&](std::size_t) { return input.Text(); })));
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bench bench;
  for (Input input(data, size); !input.AtEnd();) Deliver(bench.host, input);
  return 0;
}
