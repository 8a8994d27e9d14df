#include "players/mpd/Commands.h"

#include "players/mpd/Complaint.h"
#include "players/mpd/Id.h"
#include "players/mpd/SessionLine.h"

#include <chrono>
#include <stdexcept>
#include <utility>

namespace mpdplayer {

namespace {

constexpr std::size_t s_MostKept = 100;
constexpr std::chrono::seconds s_LongestPatience{30};
constexpr char s_Away[] = "MPD is away";

// The one that is meant, as far as that can be read.
Window WindowOf(const Call& call) {
  try {
    return call.Window();
  } catch (const std::invalid_argument&) {
    return {};
  }
}

}  // namespace

// `again`: whether it may be carried out twice.
struct Commands::Row {
  const char* name;
  bool again;
  const char* mpdCommand;
  void (Commands::*handler)(const Call&, const Ended&);
};

Commands::Commands(boost::asio::io_context& loop, Rooms rooms)
    : m_Rooms(std::move(rooms)), m_Patience(loop) {}

const Commands::Row* Commands::Find(const Call& call) {
  static constexpr Row rows[] = {
      {"PAUSE", true, "pause 1", nullptr},
      {"STOP", true, "stop", nullptr},
      {"SKIP_FWD", false, "next", nullptr},
      {"SKIP_REV", false, "previous", nullptr},
      {"SCAN_FWD", false, "seekcur +10", nullptr},
      {"SCAN_REV", false, "seekcur -10", nullptr},
      {"CLEAR_QUEUE", false, "clear", nullptr},
      {"RESET", true, nullptr, &Commands::Reset},
      {"PLAY", true, nullptr, &Commands::Play},
      {"SEEK", true, nullptr, &Commands::Seek},
      {"SET_SHUFFLE", true, nullptr, &Commands::SetShuffle},
      {"SET_REPEAT", true, nullptr, &Commands::SetRepeat},
      {"SET_CONSUME", true, nullptr, &Commands::SetConsume},
      {"SET_CROSSFADE", true, nullptr, &Commands::SetCrossfade},
      {"SET_OUTPUT", true, nullptr, &Commands::SetOutput},
      {"SET_VOLUME", true, nullptr, &Commands::SetVolume},
      {"SET_MUTE", true, nullptr, &Commands::SetMute},
      {"ADD", false, nullptr, &Commands::Add},
      {"REMOVE", false, nullptr, &Commands::Remove},
      {"MOVE", false, nullptr, &Commands::Move},
      {"SAVE_QUEUE", false, nullptr, &Commands::SaveQueue},
      {"MENU", true, nullptr, &Commands::Menu},
      {"BROWSE", true, nullptr, &Commands::Browse},
      {"SEARCH", true, nullptr, &Commands::Search},
  };
  for (const Row& row : rows) {
    if (call.Name() == row.name) return &row;
  }
  return nullptr;
}

void Commands::Obey(const std::string& record) {
  try {
    Obey(Call(record), false);
  } catch (const std::invalid_argument& error) {
    Complain("no command: " + Quoted(record) + ": " + error.what());
  }
}

void Commands::Obey(const Call& call, bool again) {
  const Row* const row = Find(call);
  if (!row) return Refuse(call, "unknown command");
  if (!m_Online) return m_Rooms.link.Away() ? Refuse(call, s_Away) : Keep(call);
  try {
    Dispatch(*row, call, [this, row, call, again](const Outcome& outcome) {
      if (outcome.kind == Outcome::Kind::Refused) Refuse(call, outcome.why);
      if (outcome.kind == Outcome::Kind::Lost) OnLost(*row, call, again, outcome.why);
    });
  } catch (const std::invalid_argument& error) {
    Refuse(call, error.what());
  }
}

void Commands::Dispatch(const Row& row, const Call& call, const Ended& ended) {
  if (row.mpdCommand) return m_Rooms.link.AskNext({row.mpdCommand, {}, ended});
  (this->*row.handler)(call, ended);
}

// A command that has lost the connection twice is perhaps the reason for it.
void Commands::OnLost(const Row& row, const Call& call, bool again, const std::string& why) {
  const auto action = call.Find("ID");
  const bool once = !row.again || (action && Actions::IsAction(*action));
  if (again || once) return Refuse(call, why + ", perhaps it is not done");
  Complain(call.Name() + ": " + why + ", it is done when MPD is back");
  Keep(call);
}

void Commands::Keep(const Call& call) {
  if (m_Kept.size() >= s_MostKept) return Refuse(call, s_Away);
  m_Kept.push_back(call);
  if (m_Kept.size() > 1) return;
  m_Patience.expires_after(s_LongestPatience);
  m_Patience.async_wait([this](const boost::system::error_code& error) {
    if (error) return;
    for (const Call& each : std::exchange(m_Kept, {})) Refuse(each, s_Away);
  });
}

void Commands::SetOnline(bool online) {
  m_Online = online;
  if (!online) return;
  m_Patience.cancel();
  for (const Call& call : std::exchange(m_Kept, {})) Obey(call, true);
}

// Who has asked for a list gets one, even if nothing is in it.
void Commands::Refuse(const Call& call, const std::string& why) {
  Complain(Quoted(call.Name()) + ": " + why);
  m_Rooms.output.Say(NotifyLine("PLAYER_ERROR", {{"command", call.Name()}, {"text", why}}));
  const bool search = call.Name() == "SEARCH";
  if (!search && call.Name() != "BROWSE") return;
  const std::string asked = call.Find(search ? "TEXT" : "ID").value_or("");
  m_Rooms.browser.TellNothing(search ? asked : SplitId(asked).second, WindowOf(call));
}

// NOLINTNEXTLINE(readability-make-member-function-const): the table's rows are of one kind
void Commands::Reset(const Call&, const Ended& ended) {
  m_Rooms.onReset();
  ended({});
}

void Commands::Play(const Call& call, const Ended& ended) {
  if (!call.Find("ID")) return m_Rooms.link.AskNext({"play", {}, ended});
  const std::string id = call.Text("ID");
  if (Actions::IsAction(id)) return m_Rooms.actions.Do(id, ended);
  m_Rooms.queue.Play(id, ended);
}

void Commands::Seek(const Call& call, const Ended& ended) {
  constexpr std::size_t longest = 1'000'000;
  m_Rooms.link.AskNext({"seekcur " + std::to_string(call.Number("POSITION", longest)), {}, ended});
}

void Commands::SetShuffle(const Call& call, const Ended& ended) {
  m_Rooms.link.AskNext({call.Switch() ? "random 1" : "random 0", {}, ended});
}

void Commands::SetRepeat(const Call& call, const Ended& ended) {
  static constexpr struct {
    const char* mode;
    const char* commands;
  } rows[] = {{"Off", "repeat 0\nsingle 0"},
              {"All", "repeat 1\nsingle 0"},
              {"One", "repeat 1\nsingle 1"},
              {"Single", "repeat 0\nsingle 1"},
              {"Oneshot", "repeat 0\nsingle oneshot"}};
  const std::string mode = call.Text("MODE");
  for (const auto& row : rows) {
    if (mode == row.mode) return m_Rooms.link.AskNext({CommandList(row.commands), {}, ended});
  }
  throw std::invalid_argument("MODE is none of Off,All,One,Single,Oneshot");
}

void Commands::SetConsume(const Call& call, const Ended& ended) {
  m_Rooms.link.AskNext({call.Switch() ? "consume 1" : "consume 0", {}, ended});
}

void Commands::SetCrossfade(const Call& call, const Ended& ended) {
  constexpr std::size_t longest = 60;
  m_Rooms.link.AskNext({"crossfade " + std::to_string(call.Number("SECONDS", longest)), {}, ended});
}

void Commands::SetOutput(const Call& call, const Ended& ended) {
  const auto [kind, number] = SplitId(call.Text("ID"));
  if (kind != "output:") throw std::invalid_argument("ID must be an output's");
  const std::string command = call.Switch() ? "enableoutput " : "disableoutput ";
  m_Rooms.link.AskNext({command + Argument(number), {}, ended});
}

void Commands::SetVolume(const Call& call, const Ended& ended) {
  constexpr std::size_t loudest = 100;
  m_Rooms.volume.Set(static_cast<int>(call.Number("VOLUME", loudest)), ended);
}

void Commands::SetMute(const Call& call, const Ended& ended) {
  m_Rooms.volume.Mute(call.Switch(), ended);
}

void Commands::Add(const Call& call, const Ended& ended) {
  static constexpr struct {
    const char* name;
    Queue::Where where;
  } rows[] = {{"End", Queue::Where::End}, {"Next", Queue::Where::Next}, {"Now", Queue::Where::Now}};
  const std::string wanted = call.Find("WHERE").value_or("End");
  for (const auto& row : rows) {
    if (wanted == row.name) return m_Rooms.queue.Add(call.Text("ID"), row.where, ended);
  }
  throw std::invalid_argument("WHERE is none of Now,Next,End");
}

void Commands::Remove(const Call& call, const Ended& ended) {
  m_Rooms.queue.Remove(call.Text("ID"), ended);
}

void Commands::Move(const Call& call, const Ended& ended) {
  constexpr std::size_t last = 1'000'000;
  m_Rooms.queue.Move(call.Text("ID"), call.Number("TO", last), ended);
}

void Commands::SaveQueue(const Call& call, const Ended& ended) {
  m_Rooms.link.AskNext({"save " + Argument(call.Text("NAME")), {}, ended});
}

void Commands::Menu(const Call&, const Ended& ended) {
  m_Rooms.browser.Menu();
  ended({});
}

void Commands::Browse(const Call& call, const Ended& ended) {
  m_Rooms.browser.Browse(call.Text("ID"), call.Window(), ended);
}

void Commands::Search(const Call& call, const Ended& ended) {
  m_Rooms.browser.Browse("search:" + call.Text("TEXT"), call.Window(), ended);
}

}  // namespace mpdplayer
