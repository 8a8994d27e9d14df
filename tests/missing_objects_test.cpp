#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

using standin::Factory;

TEST(Reset, ChangesOnlyItsCopyAndPassesTheReturnHolderOn) {
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

// When the host cannot make an object, nothing is sent, the driver still keeps the texts, and the
// next document is complete.
TEST(MissingObjects, AreNotUsed) {
  const Step query = Cmd("QUERY_CURRENT_SETTINGS");
  using Texts = std::vector<std::string>;
  const std::tuple<Factory, std::vector<Step>, Texts, Texts> cases[] = {
      {Factory::Node,
       {Ntf("SET_SHUFFLE_MODES", {{"shuffle_modes", "m"}}), Ntf("SHUFFLE_CHANGED", {{"shuffle_mode", "s"}}),
        Ntf("UPDATE_MEDIA_INFO", {{"media_info_1", "new"}}), Ntf("MEDIA_INFO_CHANGED"),
        Ntf("PLAY_TIME_CHANGED", {{"elapsed", "1"}}), Ntf("QUEUE_PROGRESS_CHANGED", {{"current", "2"}}),
        Ntf("CURRENT_SETTINGS"), Ntf("NEW_MENU"), Ntf("ADD_MENU_ITEM", {{"last", "True"}}), Ntf("NEW_LIST"),
        Ntf("ADD_LIST_ITEM", {{"last", "True"}}), Ntf("COVERART_PATH_CHANGED"), query, Req("GET_PLAY_STATUS"),
        [](standin::Host& host) { host.Persist(); }},
       {"answer GET_PLAY_STATUS nothing", "state nothing"},
       {"<shuffle_modes>m<", "<shuffle_mode>s<", "<media_info_1/>", "<elapsed>1<", "<current_song>2<"}},
      {Factory::CommandMessage,
       {Ntf("UPDATE_MEDIA_INFO", {{"media_info_1", "new"}}), NtfXml("X", "<command name='PLAY'/>")},
       {},
       {"<media_info_1>new<"}},
      {Factory::Document, {NtfXml("X", "<x/>")}, {}, {}},
      {Factory::Clone, {Cmd("RESET")}, {}, {}},
      {Factory::BindMessage, {Cmd("RESET"), Cmd("PLAY")}, {}, {}},
  };
  for (const auto& [factory, steps, traffic, keeps] : cases) {
    SCOPED_TRACE("factory " + std::to_string(static_cast<unsigned>(factory)));
    Bench bench;
    bench(Ntf("NEW_LIST"));
    bench.host.SetFault(factory, true);
    for (const Step& step : steps) step(bench.host);
    EXPECT_EQ(bench.recorder.Take(), traffic);
    bench.host.SetFault(factory, false);
    const std::string report = bench(query).at(0);
    for (const auto& kept : keeps) EXPECT_NE(report.find(kept), std::string::npos) << kept << " in " << report;
  }
}
