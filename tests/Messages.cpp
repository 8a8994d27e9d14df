#include "tests/Messages.h"

#include <sstream>

std::vector<Message> Messages(const std::string& text) {
  std::vector<Message> all;
  for (const char* row :
       {"CURRENT_SETTINGS online", "MEDIA_INFO_CHANGED media_info_1 media_info_3",
        "COVERART_PATH_CHANGED image_path width", "NEW_LIST title total_items num_items first clear",
        "ADD_LIST_ITEM id type text", "NEW_MENU title num_items", "ADD_MENU_ITEM id type text", "NEW_COVERART format",
        "AN_UNKNOWN_NOTIFICATION p", "PLAY_STATUS_CHANGED play_status", "ONLINE_STATUS_CHANGED online_status",
        "SET_SHUFFLE_MODES shuffle_modes", "SET_REPEAT_MODES repeat_modes", "SET_MEDIA_LABELS media_labels",
        "SHUFFLE_CHANGED shuffle_mode", "REPEAT_CHANGED repeat_mode",
        "UPDATE_MEDIA_INFO media_info_1 media_info_2 media_info_3", "PLAY_TIME_CHANGED elapsed remaining",
        "QUEUE_PROGRESS_CHANGED current total"}) {
    std::istringstream words(row);
    std::string name, parameter;
    standin::Params params;
    for (words >> name; words >> parameter;) params.push_back({parameter, text});
    all.push_back({name, Ntf(name, params)});
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
