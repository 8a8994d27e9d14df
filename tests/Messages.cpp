#include "tests/Messages.h"

std::vector<Message> Messages(const std::string& text) {
  std::vector<Message> all;
  for (const auto& notification : ReadNotifications()) {
    all.push_back({notification.name, Ntf(notification.name, notification.Params([&](std::size_t) { return text; }))});
  }
  for (const char* format : {"RGB565", "RGB888", "JPEG"}) {
    all.push_back({format, Ntf("NEW_COVERART", {{"cover_art", "AAD4AOAHHwA="},
                                                {"width", "2 " + text},
                                                {"height", "1 " + text},
                                                {"format", format},
                                                {"size", "8 " + text}})});
  }
  for (const char* name : {"PLAY_STATUS", "ONLINE_STATUS", "SHUFFLE_MODES", "REPEAT_MODES", "NOTHING"}) {
    all.push_back({name, Req(std::string("GET_") + name)});
  }
  const std::vector<Message> others = {
      {"playing", Ntf("PLAY_STATUS_CHANGED", {{"play_status", "Playing"}})},
      {"document", NtfXml("X", "<document><p>" + text + "</p></document>")},
      {"command inside", NtfXml("X", "<command name='RESET'><param name='ROOM_ID'>5" + text + "</param></command>")},
      {"reset", Cmd("RESET", {{"ROOM_ID", "5", "INTEGER"}, {"A_PARAMETER", text}})},
      {"report", Cmd("QUERY_CURRENT_SETTINGS")},
      {"other command", Cmd("A_COMMAND_FOR_THE_DEVICE", {{"P", text}})},
      {"state", [](standin::Host& host) { host.Persist(); }},
      {"unbound", [](standin::Host& host) { host.Unbind(5001, "PLAYER"); }},
      {"bound", [text](standin::Host& host) {
         host.Bind(5001, "PLAYER",
                   {{"has_play", text.size() % 2 == 0 ? "True" : "False"},
                    {"shuffle_modes", text},
                    {"repeat_modes", text},
                    {"media_labels", text}});
       }}};
  all.insert(all.end(), others.begin(), others.end());
  return all;
}
