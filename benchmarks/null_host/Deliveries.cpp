#include "benchmarks/null_host/Deliveries.h"

#include "benchmarks/null_host/NullHost.h"

#include <map>
#include <memory>
#include <utility>

namespace null_host {

namespace {

// The texts of the two messages, where it matters what they are.
std::pair<std::string, std::string> Texts(const std::string& notification) {
  static const std::map<std::string, std::pair<std::string, std::string>> special = {
      {"PLAY_STATUS_CHANGED", {"Playing", "Paused"}},  // both fire an event
      {"ADD_LIST_ITEM", {"False", "True"}},            // the second one sends the list
      {"ADD_MENU_ITEM", {"False", "True"}},
  };
  const auto texts = special.find(notification);
  return texts == special.end() ? std::pair<std::string, std::string>{"a text", "another text"}
                                : texts->second;
}

}  // namespace

std::vector<Delivery> Deliveries(const char* plugin) {
  TqBaseProxyDriver& driver = MakeDriver(plugin);
  std::vector<Delivery> all;
  for (const auto& [name, handler] : s_Handlers.notifications) {
    const auto texts = Texts(name);
    const auto one = std::make_shared<BindMessage>(texts.first);
    const auto two = std::make_shared<BindMessage>(
        texts.second, name == "any_other_notification" ? "A_COMMAND" : "");
    all.push_back({name, [one, two, deliver = handler] {
                     deliver(*one);
                     deliver(*two);
                   }});
    all.back().deliverTwo();  // a header goes before the items
  }
  static const CmdMessage message;
  for (const auto& [name, handler] : s_Handlers.commands) {
    all.push_back({name, [deliver = handler] {
                     deliver(message, nullptr);
                     deliver(message, nullptr);
                   }});
  }
  for (const auto& [name, handler] : s_Handlers.requests) {
    all.push_back({name, [deliver = handler] {
                     deliver(message);
                     deliver(message);
                   }});
  }
  all.push_back({"binding_made", [&driver, className = std::string("PLAYER")] {
                   driver.OnBindingChanged(5001, className, true);
                   driver.OnBindingChanged(5001, className, true);
                 }});
  return all;
}

}  // namespace null_host
