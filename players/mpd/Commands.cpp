#include "players/mpd/Commands.h"

#include "players/mpd/Complaint.h"
#include "players/mpd/SessionLine.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>

namespace mpdplayer {

// A command as the driver has sent it. Reading a wrong parameter throws std::invalid_argument.
struct Commands::Call {
  std::string name;
  std::vector<std::pair<std::string, std::string>> params;

  explicit Call(const std::string& record) {
    const auto json = nlohmann::json::parse(record);
    if (json.at("to") != "device" || json.at("binding") != 5001) {
      throw std::invalid_argument("it is not for this device");
    }
    name = BytesOf(json.at("command"));
    for (const auto& param : json.at("params")) {
      params.emplace_back(BytesOf(param.at("name")), BytesOf(param.at("value")));
    }
  }

  std::optional<std::string> Find(const std::string& wanted) const {
    for (const auto& [key, value] : params) {
      if (key == wanted) return value;
    }
    return {};
  }

  std::string Text(const std::string& wanted) const {
    const auto value = Find(wanted);
    if (!value || value->empty()) throw std::invalid_argument(wanted + " is missing");
    return *value;
  }

  std::size_t Number(const std::string& wanted, std::size_t fallback, std::size_t least,
                     std::size_t most) const {
    const auto value = Find(wanted);
    if (!value) return fallback;
    std::size_t number = 0;
    const char* const end = value->data() + value->size();
    const auto [stop, fault] = std::from_chars(value->data(), end, number);
    if (fault != std::errc() || stop != end || number < least || number > most) {
      throw std::invalid_argument(wanted + " is " + Quoted(*value) + ", not a number from " +
                                  std::to_string(least) + " to " + std::to_string(most));
    }
    return number;
  }

  mpdplayer::Window Window() const {
    constexpr std::size_t last = 1'000'000'000;
    constexpr std::size_t longest = 10'000;
    return {Number("FIRST", 0, 0, last), Number("COUNT", mpdplayer::Window().count, 1, longest)};
  }

  Browser::Refused Refused() const {
    return [what = name](const std::string& why) { Complain(what + ": " + why); };
  }
};

void Commands::Obey(const std::string& record) {
  try {
    const Call call(record);
    try {
      Dispatch(call);
    } catch (const std::invalid_argument& error) {
      Complain(Quoted(call.name) + ": " + error.what());
    }
  } catch (const std::invalid_argument& error) {
    Complain("no command: " + Quoted(record) + ": " + error.what());
  } catch (const nlohmann::json::exception&) {
    Complain("no command: " + Quoted(record));
  }
}

void Commands::Dispatch(const Call& call) {
  static constexpr struct {
    const char* name;
    const char* mpdCommand;
    void (Commands::*handler)(const Call&);
  } rows[] = {
      {"PAUSE", "pause 1", nullptr},
      {"STOP", "stop", nullptr},
      {"SKIP_FWD", "next", nullptr},
      {"SKIP_REV", "previous", nullptr},
      {"SCAN_FWD", "seekcur +10", nullptr},
      {"SCAN_REV", "seekcur -10", nullptr},
      {"RESET", nullptr, &Commands::Reset},
      {"PLAY", nullptr, &Commands::Play},
      {"SEEK", nullptr, &Commands::Seek},
      {"SET_SHUFFLE", nullptr, &Commands::SetShuffle},
      {"SET_REPEAT", nullptr, &Commands::SetRepeat},
      {"MENU", nullptr, &Commands::Menu},
      {"BROWSE", nullptr, &Commands::Browse},
      {"SEARCH", nullptr, &Commands::Search},
  };
  for (const auto& row : rows) {
    if (call.name != row.name) continue;
    if (row.mpdCommand) return Pass(call, row.mpdCommand);
    return (this->*row.handler)(call);
  }
  throw std::invalid_argument("unknown command");
}

void Commands::Pass(const Call& call, const std::string& mpdCommand) {
  m_Link.Ask({mpdCommand, {}, [refused = call.Refused()](const std::string& refusal) {
                if (!refusal.empty()) refused(refusal);
              }});
}

void Commands::Reset(const Call&) { m_OnReset(); }

void Commands::Play(const Call& call) {
  if (!call.Find("ID")) return Pass(call, "play");
  m_Browser.Play(call.Text("ID"), call.Refused());
}

void Commands::Seek(const Call& call) {
  constexpr std::size_t longest = 1'000'000;
  call.Text("POSITION");
  Pass(call, "seekcur " + std::to_string(call.Number("POSITION", 0, 0, longest)));
}

void Commands::SetShuffle(const Call& call) {
  const std::string mode = call.Text("MODE");
  if (mode != "Off" && mode != "On") throw std::invalid_argument("MODE is none of Off,On");
  Pass(call, mode == "On" ? "random 1" : "random 0");
}

void Commands::SetRepeat(const Call& call) {
  static constexpr struct {
    const char* mode;
    const char* commands;
  } rows[] = {
      {"Off", "repeat 0\nsingle 0"}, {"All", "repeat 1\nsingle 0"}, {"One", "repeat 1\nsingle 1"}};
  const std::string mode = call.Text("MODE");
  for (const auto& row : rows) {
    if (mode == row.mode) return Pass(call, CommandList(row.commands));
  }
  throw std::invalid_argument("MODE is none of Off,All,One");
}

void Commands::Menu(const Call&) { m_Browser.Menu(); }

void Commands::Browse(const Call& call) {
  m_Browser.Browse(call.Text("ID"), call.Window(), call.Refused());
}

void Commands::Search(const Call& call) {
  m_Browser.Search(call.Text("TEXT"), call.Window(), call.Refused());
}

}  // namespace mpdplayer
