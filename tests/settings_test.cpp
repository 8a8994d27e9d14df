#include <gtest/gtest.h>

#include "tests/Bench.h"

using standin::Factory;

namespace {

const Step s_Query = Cmd("QUERY_CURRENT_SETTINGS");

// The report with these flags, named values, lines, times, places and lists.
std::string Report(const std::string& flags, const std::vector<std::string>& values) {
  static constexpr const char* flagNames[] = {"has_shuffle",  "has_repeat",   "has_play",     "has_pause",
                                              "has_stop",     "has_skip_fwd", "has_skip_rev", "has_scan_fwd",
                                              "has_scan_rev", "has_menu",     "has_search",   "has_browse"};
  static const std::vector<const char*> rows = {"online",
                                                "play_status",
                                                "shuffle_mode",
                                                "repeat_mode",
                                                "<MEDIA_INFO_CHANGED>",
                                                "media_info_1",
                                                "media_info_2",
                                                "media_info_3",
                                                "</MEDIA_INFO_CHANGED><PLAY_TIME_CHANGED>",
                                                "elapsed",
                                                "remaining",
                                                "</PLAY_TIME_CHANGED><QUEUE_PROGRESS_CHANGED>",
                                                "current_song",
                                                "total_songs",
                                                "</QUEUE_PROGRESS_CHANGED>",
                                                "shuffle_modes",
                                                "repeat_modes",
                                                "media_labels"};
  const auto element = [](const std::string& name, const std::string& text) {
    return text.empty() ? "<" + name + "/>" : "<" + name + ">" + text + "</" + name + ">";
  };
  std::string xml = "ui <CURRENT_SETTINGS>";
  for (std::size_t i = 0; i < 12; ++i) xml += element(flagNames[i], flags[i] == '1' ? "True" : "False");
  auto value = values.begin();
  for (const std::string row : rows) xml += row[0] == '<' ? row : element(row, *value++);
  return xml + "</CURRENT_SETTINGS>";
}

const std::vector<std::string> s_Defaults = {"False", "Stopped", "", "", "", "", "", "", "", "0", "0", "", "", ""};

std::vector<std::string> With(std::vector<std::string> values, const std::map<std::size_t, std::string>& changes) {
  for (const auto& [index, value] : changes) values[index] = value;
  return values;
}

}  // namespace

TEST(Settings, ReportsWhatTheDriverHolds) {
  Check({
      {"at the start", {s_Query}, {Report("111111111110", s_Defaults)}},
      {"the notification's own text, and nothing changes",
       {Ntf("CURRENT_SETTINGS", {{"online", "Maybe"}}), s_Query},
       {"ui <CURRENT_SETTINGS><online>Maybe</online></CURRENT_SETTINGS>", Report("111111111110", s_Defaults)}},
  });
  Check({{"everything, as it came",
          {s_Query},
          {Report("111111111110",
                  {"True", "Odd", "S", "R", " one ", "\"two\"", "", "1", "2", "9", "3", "s1,s2", "r1", "l"})}}},
        {Ntf("ONLINE_STATUS_CHANGED", {{"online_status", "True"}}),
         Ntf("PLAY_STATUS_CHANGED", {{"play_status", "Odd"}}), Ntf("SHUFFLE_CHANGED", {{"shuffle_mode", "S"}}),
         Ntf("REPEAT_CHANGED", {{"repeat_mode", "R"}}), Ntf("UPDATE_MEDIA_INFO", {{"media_info_3", "gone"}}),
         Ntf("UPDATE_MEDIA_INFO", {{"media_info_1", " one "}, {"media_info_2", "\"two\""}}),
         Ntf("MEDIA_INFO_CHANGED", {{"media_info_1", "not kept"}}),
         Ntf("PLAY_TIME_CHANGED", {{"elapsed", "1"}, {"remaining", "2"}}),
         Ntf("QUEUE_PROGRESS_CHANGED", {{"current", "9"}, {"total", "3"}}),
         Ntf("SET_SHUFFLE_MODES", {{"shuffle_modes", "s1,s2"}}), Ntf("SET_REPEAT_MODES", {{"repeat_modes", "r1"}}),
         Ntf("SET_MEDIA_LABELS", {{"media_labels", "l"}}), Cmd("RESET"), Unbind()});
}

TEST(Settings, EachCapabilityHasItsFlag) {
  static const std::vector<std::string> names = {"has_shuffle",  "has_repeat",   "has_play",     "has_pause",
                                                 "has_stop",     "has_skip_fwd", "has_skip_rev", "has_scan_fwd",
                                                 "has_scan_rev", "has_menu",     "has_search",   "has_browse"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::map<std::string, std::string> stated;
    for (std::size_t j = 0; j < names.size(); ++j) stated[names[j]] = i == j ? "True" : "true";
    std::string flags(names.size(), '0');
    flags[i] = '1';
    Check({{names[i].c_str(),
            {Bind(stated), s_Query},
            {Report(flags,
                    With(s_Defaults,
                         {{11, i == 0 ? "On,Off" : ""}, {12, i == 1 ? "On,Off" : ""}, {13, "Album,Artist,Title"}}))}}});
  }
}

TEST(Settings, TakesTheListsWhenTheProxyBindingIsMade) {
  const auto bound = With(s_Defaults, {{11, "On,Off"}, {12, "On,Off"}, {13, "Album,Artist,Title"}});
  const auto was = With(s_Defaults, {{11, "s"}, {12, "r"}, {13, "l"}});
  const std::string all = "111111111110";
  Check(
      {
          {"nothing stated: flags stay, lists take their defaults", {Bind({}), s_Query}, {Report(all, bound)}},
          {"stated lists, also empty ones",
           {Bind({{"shuffle_modes", "a"}, {"repeat_modes", "b,c"}, {"media_labels", ""}}), s_Query},
           {Report(all, With(s_Defaults, {{11, "a"}, {12, "b,c"}}))}},
          {"no shuffle: its list stays",
           {Bind({{"has_shuffle", "False"}, {"shuffle_modes", "a"}}), s_Query},
           {Report("011111111110", With(bound, {{11, "s"}}))}},
          {"no repeat: its list stays",
           {Bind({{"has_repeat", "False"}, {"repeat_modes", "a"}}), s_Query},
           {Report("101111111110", With(bound, {{12, "r"}}))}},
          {"again, by the flag just stated",
           {Bind({{"has_shuffle", "False"}}), Bind({{"has_shuffle", "True"}, {"shuffle_modes", "x"}}), s_Query},
           {Report(all, With(bound, {{11, "x"}}))}},
          {"another binding",
           {Bind({{"has_play", "False"}, {"media_labels", "x"}}, 5002), s_Query},
           {Report(all, was)}},
          {"broken bindings", {Unbind(), Unbind(5002), s_Query}, {Report(all, was)}},
      },
      {Ntf("SET_SHUFFLE_MODES", {{"shuffle_modes", "s"}}), Ntf("SET_REPEAT_MODES", {{"repeat_modes", "r"}}),
       Ntf("SET_MEDIA_LABELS", {{"media_labels", "l"}})});
}

TEST(Settings, ForwardsResetWithTheRoomsOutput) {
  const Step rooms = [](standin::Host& host) { host.SetRooms({{5, 3}, {6, 4}}); };
  Check(
      {
          {"no room", {Cmd("RESET")}, {"device 5001 RESET"}},
          {"a room",
           {Cmd("RESET", {{"ROOM_ID", "5", "INTEGER"}, {"X", "y"}})},
           {"device 5001 RESET ROOM_ID:INTEGER=5 X:STRING=y OUTPUT:INTEGER=3"}},
          {"another, as text",
           {Cmd("RESET", {{"ROOM_ID", "6th"}})},
           {"device 5001 RESET ROOM_ID:STRING=6th OUTPUT:INTEGER=4"}},
          {"a room without an output",
           {Cmd("RESET", {{"ROOM_ID", "9"}})},
           {"device 5001 RESET ROOM_ID:STRING=9 OUTPUT:INTEGER=0"}},
          {"a room and an output",
           {Cmd("RESET", {{"OUTPUT", "1"}, {"ROOM_ID", "5"}})},
           {"device 5001 RESET OUTPUT:STRING=1 ROOM_ID:STRING=5"}},
          {"an output without a room", {Cmd("RESET", {{"OUTPUT", ""}})}, {"device 5001 RESET OUTPUT:STRING="}},
          {"other commands go on as they are",
           {Cmd("PLAY", {{"ROOM_ID", "5"}})},
           {"device 5001 PLAY ROOM_ID:STRING=5"}},
          {"no copy", {Fault(Factory::Clone), Cmd("RESET")}, {}},
          {"no bound message", {Fault(Factory::BindMessage), Cmd("RESET")}, {}},
      },
      {rooms});
}

TEST(Settings, ResetChangesOnlyItsCopyAndPassesTheReturnHolderOn) {
  Bench bench;
  struct : ICmdReturn {
  } answer;
  const auto command = standin::MakeCommand("RESET", {{"ROOM_ID", "5"}});
  bench.host.Execute(*command, &answer);
  EXPECT_EQ(bench.recorder.lastReturn, &answer);
  EXPECT_FALSE(command->HasParam("OUTPUT"));
  bench.host.Execute(*command);
  EXPECT_EQ(bench.recorder.lastReturn, nullptr);
}

TEST(Settings, SkipsWhatTheHostCannotMake) {
  const std::vector<Step> notifications = {Ntf("SET_SHUFFLE_MODES", {{"shuffle_modes", "m"}}),
                                           Ntf("SHUFFLE_CHANGED", {{"shuffle_mode", "s"}}),
                                           Ntf("UPDATE_MEDIA_INFO", {{"media_info_1", "new"}}),
                                           Ntf("MEDIA_INFO_CHANGED"),
                                           Ntf("PLAY_TIME_CHANGED", {{"elapsed", "1"}}),
                                           Ntf("QUEUE_PROGRESS_CHANGED", {{"current", "2"}}),
                                           Ntf("CURRENT_SETTINGS"),
                                           Ntf("NEW_MENU"),
                                           Ntf("ADD_MENU_ITEM", {{"last", "True"}}),
                                           Ntf("NEW_LIST"),
                                           Ntf("ADD_LIST_ITEM", {{"last", "True"}}),
                                           Ntf("COVERART_PATH_CHANGED"),
                                           s_Query};
  std::vector<Step> steps = {Ntf("NEW_LIST"), Fault(Factory::Node)};
  steps.insert(steps.end(), notifications.begin(), notifications.end());
  steps.push_back(Req("GET_PLAY_STATUS"));
  steps.push_back([](standin::Host& host) { host.Persist(); });
  steps.push_back(Fault(Factory::Node, false));
  steps.push_back(s_Query);
  Check({
      {"no nodes: kept where it says so, and nothing sent",
       steps,
       {"answer GET_PLAY_STATUS nothing", "state nothing",
        Report("111111111110", With(s_Defaults, {{2, "s"}, {7, "1"}, {9, "2"}, {10, ""}, {11, "m"}}))}},
      {"no command message: the lines are kept",
       {Fault(Factory::CommandMessage), Ntf("UPDATE_MEDIA_INFO", {{"media_info_1", "new"}}),
        NtfXml("X", "<command name=\"PLAY\"/>"), s_Query},
       {Report("111111111110", With(s_Defaults, {{4, "new"}}))}},
      {"no document", {Fault(Factory::Document), NtfXml("X", "<x/>")}, {}},
  });
}
