#include <gtest/gtest.h>

#include "tests/Bench.h"

namespace {

Step Play(const std::string& status) { return Ntf("PLAY_STATUS_CHANGED", {{"play_status", status}}); }

Step Online(const std::string& status) { return Ntf("ONLINE_STATUS_CHANGED", {{"online_status", status}}); }

Step Update(const std::string& one, const std::string& two, const std::string& three) {
  return Ntf("UPDATE_MEDIA_INFO", {{"media_info_1", one}, {"media_info_2", two}, {"media_info_3", three}});
}

// The rooms' command with these labels.
std::string Rooms(const std::string& labels) {
  return "rooms UPDATE_MEDIA_INFO MEDIA_INFO:STRING=<mediainfo><mediatype>MEDIASONG</mediatype>"
         "<deviceid>7</deviceid>" +
         labels + "</mediainfo>";
}

}  // namespace

TEST(PlayerState, TellsEachStatusButPublishesOnlyChanges) {
  const std::string stopped = "ui <play_status>Stopped</play_status>";
  const std::string offline = "ui <online_status>False</online_status>";
  Check({
      {"held from the start", {Play("Stopped"), Online("False")}, {stopped, offline}},
      {"event, variable, user interfaces",
       {Play("Playing"), Play("Paused"), Play("Paused"), Play("Stopped")},
       {"event 0", "changed 1000 PLAY_STATUS=Playing", "ui <play_status>Playing</play_status>", "event 2",
        "changed 1000 PLAY_STATUS=Paused", "ui <play_status>Paused</play_status>",
        "ui <play_status>Paused</play_status>", "event 1", "changed 1000 PLAY_STATUS=Stopped", stopped}},
      {"letter case counts",
       {Play("playing")},
       {"changed 1000 PLAY_STATUS=playing", "ui <play_status>playing</play_status>"}},
      {"a longer text is another",
       {Play("Playing ")},
       {"changed 1000 PLAY_STATUS=Playing ", "ui <play_status>Playing </play_status>"}},
      {"a missing parameter is an empty status",
       {Ntf("PLAY_STATUS_CHANGED"), Ntf("ONLINE_STATUS_CHANGED")},
       {"changed 1000 PLAY_STATUS=", "ui <play_status/>", "changed 1001 ONLINE_STATUS=", "ui <online_status/>"}},
      {"online fires no event",
       {Online("True"), Online("True")},
       {"changed 1001 ONLINE_STATUS=True", "ui <online_status>True</online_status>",
        "ui <online_status>True</online_status>"}},
      {"answers at the start",
       {Req("GET_PLAY_STATUS"), Req("GET_ONLINE_STATUS")},
       {"answer GET_PLAY_STATUS <play_status>Stopped</play_status>",
        "answer GET_ONLINE_STATUS <online>False</online>"}},
      {"nobody answers", {Req("GET_VOLUME")}, {"answer GET_VOLUME nothing"}},
  });
  Check({{"answers what came last",
          {Req("GET_PLAY_STATUS"), Req("GET_ONLINE_STATUS")},
          {"answer GET_PLAY_STATUS <play_status>x</play_status>", "answer GET_ONLINE_STATUS <online>True</online>"}}},
        {Play("x"), Online("True")});
}

TEST(PlayerState, KeepsModesAndTheirListsApart) {
  const auto set = [](const std::string& what, const std::string& text) {
    return Ntf("SET_" + what, {{what == "SHUFFLE_MODES"  ? "shuffle_modes"
                                : what == "REPEAT_MODES" ? "repeat_modes"
                                                         : "media_labels",
                                text}});
  };
  const std::string labels =
      "ui <MEDIA_LABELS_CHANGED><media_labels>Album,Artist,Title"
      "</media_labels></MEDIA_LABELS_CHANGED>";
  Check({
      {"lists",
       {set("SHUFFLE_MODES", "Off,On"), set("REPEAT_MODES", "On,Off"), set("MEDIA_LABELS", "Album,Artist,Title"),
        set("MEDIA_LABELS", "Album,Artist,Title"), Req("GET_SHUFFLE_MODES"), Req("GET_REPEAT_MODES")},
       {"ui <SHUFFLE_MODES_CHANGED><shuffle_modes>Off,On</shuffle_modes></SHUFFLE_MODES_CHANGED>",
        "ui <REPEAT_MODES_CHANGED><repeat_modes>On,Off</repeat_modes></REPEAT_MODES_CHANGED>", labels, labels,
        "answer GET_SHUFFLE_MODES <shuffle_modes>Off,On</shuffle_modes>",
        "answer GET_REPEAT_MODES <repeat_modes>On,Off</repeat_modes>"}},
      {"modes leave the lists alone",
       {Ntf("SHUFFLE_CHANGED", {{"shuffle_mode", "Wild"}}), Req("GET_SHUFFLE_MODES"),
        Ntf("REPEAT_CHANGED", {{"repeat_mode", "One"}}), Ntf("REPEAT_CHANGED", {{"repeat_mode", "One"}}),
        Req("GET_REPEAT_MODES")},
       {"ui <SHUFFLE_CHANGED><shuffle_mode>Wild</shuffle_mode></SHUFFLE_CHANGED>",
        "answer GET_SHUFFLE_MODES <shuffle_modes/>",
        "ui <REPEAT_CHANGED><repeat_mode>One</repeat_mode></REPEAT_CHANGED>",
        "ui <REPEAT_CHANGED><repeat_mode>One</repeat_mode></REPEAT_CHANGED>",
        "answer GET_REPEAT_MODES <repeat_modes/>"}},
      {"missing parameters",
       {Ntf("SHUFFLE_CHANGED"), Ntf("SET_REPEAT_MODES")},
       {"ui <SHUFFLE_CHANGED><shuffle_mode/></SHUFFLE_CHANGED>",
        "ui <REPEAT_MODES_CHANGED><repeat_modes/></REPEAT_MODES_CHANGED>"}},
  });
}

TEST(PlayerState, TrimsMediaInformationOnItsWayToTheRooms) {
  Check({
      {"quotes and blanks go",
       {Update("\"Song\"", " Artist ", "")},
       {Rooms("<label_1>Song</label_1><label_2>Artist</label_2>")}},
      {"mixed, and inside they stay",
       {Update("\" a \"b\" \"", "", "x\"")},
       {Rooms("<label_1>a \"b</label_1><label_3>x</label_3>")}},
      {"nothing but blanks or quotes stays",
       {Update("  ", "\"\"", "\" \"")},
       {Rooms("<label_1>  </label_1><label_2>\"\"</label_2><label_3>\" \"</label_3>")}},
      {"tabs and line breaks stay",
       {Update("\tx\n", " \ny\t\"", "")},
       {Rooms("<label_1>\tx\n</label_1><label_2>\ny\t</label_2>")}},
      {"no lines", {Update("", "", "")}, {Rooms("")}},
      {"no parameters", {Ntf("UPDATE_MEDIA_INFO")}, {Rooms("")}},
      {"told to the user interfaces as it came",
       {Ntf("MEDIA_INFO_CHANGED", {{"media_info_3", " c "}, {"media_info_1", "\"a\""}})},
       {"ui <MEDIA_INFO_CHANGED><media_info_1>\"a\"</media_info_1><media_info_2/>"
        "<media_info_3> c </media_info_3></MEDIA_INFO_CHANGED>"}},
  });
}

TEST(PlayerState, ForwardsTimesAndQueueAsTheyCome) {
  const std::string time =
      "ui <PLAY_TIME_CHANGED><elapsed>1:05</elapsed><remaining>2:30</remaining>"
      "</PLAY_TIME_CHANGED>";
  const Step tick = Ntf("PLAY_TIME_CHANGED", {{"remaining", "2:30"}, {"elapsed", "1:05"}});
  Check({
      {"time, also again", {tick, tick}, {time, time}},
      {"one is missing",
       {tick, Ntf("PLAY_TIME_CHANGED", {{"remaining", "live"}})},
       {time, "ui <PLAY_TIME_CHANGED><elapsed/><remaining>live</remaining></PLAY_TIME_CHANGED>"}},
      {"the queue's names change",
       {Ntf("QUEUE_PROGRESS_CHANGED", {{"current", "13"}, {"total", "x"}})},
       {"ui <QUEUE_PROGRESS_CHANGED><current_song>13</current_song><total_songs>x</total_songs>"
        "</QUEUE_PROGRESS_CHANGED>"}},
  });
}
