#include "fuzz/Bench.h"
#include "fuzz/Input.h"

#include <sstream>

// Each other letter of an input is one of these with all its parameters.
// clang-format off
static constexpr const char* s_Notifications[] = {
    "CURRENT_SETTINGS online", "UPDATE_MEDIA_INFO media_info_1 media_info_2 media_info_3",
    "MEDIA_INFO_CHANGED media_info_1 media_info_2 media_info_3", "PLAY_STATUS_CHANGED play_status",
    "ONLINE_STATUS_CHANGED online_status", "PLAY_TIME_CHANGED elapsed remaining",
    "QUEUE_PROGRESS_CHANGED current total", "SHUFFLE_CHANGED shuffle_mode", "REPEAT_CHANGED repeat_mode",
    "COVERART_PATH_CHANGED image_path width height", "NEW_COVERART format width height size cover_art",
    "SET_SHUFFLE_MODES shuffle_modes", "SET_REPEAT_MODES repeat_modes", "SET_MEDIA_LABELS media_labels",
    "NEW_LIST title total_items num_items first clear", "ADD_LIST_ITEM id type text last", "NEW_MENU title num_items",
    "ADD_MENU_ITEM id type text last"};
// clang-format on

static standin::Params AnyParams(Input& input) {
  standin::Params params;
  while (input.Byte() == '=') params.push_back({input.Text(), input.Text()});
  return params;
}

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
    case 'p': return host.Persist();
    case 'f': return host.SetFault(static_cast<standin::Factory>(input.Byte() % 5), name.empty());
  }
  std::istringstream row(s_Notifications[kind % 18U]);
  std::string known, word;
  standin::Params params;
  for (row >> known; row >> word;) params.push_back({word, input.Text()});
  host.Notify(*standin::MakeNotification(known, std::move(params)));
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bench bench;
  for (Input input(data, size); !input.AtEnd();) Deliver(bench.host, input);
  return 0;
}
