#include "players/mpd/Player.h"

#include "players/mpd/Complaint.h"

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace mpdplayer {

namespace {

using std::chrono::milliseconds;

// So that a MPD that hangs is noticed in time, even when it has nothing to say.
constexpr milliseconds s_LongestLook{4000};
constexpr milliseconds s_ShortestLook{250};
constexpr milliseconds s_Second{1000};

}  // namespace

Player::Player(const Server& server, std::string password, ArtOptions art)
    : m_Output(m_Loop, STDOUT_FILENO, [this] { m_Loop.stop(); }),
      m_Input(
          m_Loop, STDIN_FILENO,
          {[this](const std::string& line) { m_Commands.Obey(line); }, [this] { m_Loop.stop(); },
           [this](std::function<void()> go) {
             m_Link.WhenRoom([this, go = std::move(go)] { m_Output.WhenRoom(go); });
           }}),
      m_Link(m_Loop, server,
             {[this] { OnUp(); }, [this](const std::string& reason) { OnDown(reason); },
              [this](std::string_view subsystem) { OnChange(subsystem); },
              [this](std::function<void()> go) { m_Output.WhenRoom(std::move(go)); }}),
      m_Volume(m_Link, [this] { AskState(); }),
      m_Reports(m_Output, m_Volume),
      m_CoverArt(m_Link, m_Output, art),
      m_Queue(m_Link),
      m_Actions(m_Link, m_Queue),
      m_Browser(m_Link, m_Output, m_Actions),
      m_Commands(m_Loop,
                 {m_Link, m_Output, m_Queue, m_Actions, m_Browser, m_Volume, [this] { Reset(); }}),
      m_NextLook(m_Loop),
      m_Password(std::move(password)) {}

void Player::Run() {
  m_Link.Start();
  m_Input.Start();
  m_Loop.run();
  m_Output.Flush();
}

void Player::OnUp() {
  if (!m_Password.empty()) Password();
  m_Allowed.clear();
  m_Link.Ask({"commands",
              [this](std::string_view, std::string_view value) { m_Allowed.emplace(value); },
              [](const Outcome&) {}});
  const auto ignore = [](const Outcome&) {};
  m_Link.Ask({CommandList(
                  "tagtypes clear\ntagtypes enable Artist AlbumArtist Album Title Name Date Genre"),
              {},
              ignore});
  m_Link.Ask({"binarylimit 131072", {}, ignore});
  m_StateAsked = false;
  AskState();
}

void Player::Password() {
  m_Link.Ask({"password " + Argument(m_Password), {}, [](const Outcome& outcome) {
                if (outcome.kind == Outcome::Kind::Refused) {
                  throw LinkError("the password is refused: " + outcome.why);
                }
              }});
}

void Player::AskState() {
  if (std::exchange(m_StateAsked, true)) return;
  const auto state = std::make_shared<PlayerState>();
  m_Link.Ask({CommandList("status\ncurrentsong"),
              [state](std::string_view name, std::string_view value) { state->Take(name, value); },
              [this, state](const Outcome& outcome) {
                m_StateAsked = false;
                if (outcome.kind == Outcome::Kind::Refused) {
                  throw LinkError("the status is refused: " + outcome.why);
                }
                if (outcome.Done()) OnState(*state);
              }});
}

void Player::OnState(const PlayerState& state) {
  const bool wasOnline = std::exchange(m_Online, true);
  if (!wasOnline) Bind();
  m_Reports.Say("ONLINE_STATUS_CHANGED", {{"online_status", "True"}});
  m_Reports.Settings(state.Status());
  m_Reports.Playing(state);
  TellChangedLists(state.Status(), wasOnline);
  LookAgain(state.Status());
  m_CoverArt.Follow(state.Song().uri);
  if (!wasOnline) m_Commands.SetOnline(true);
}

// While it plays, MPD is asked when the next second begins: only it knows how far it is.
void Player::LookAgain(const mpd_status& status) {
  const bool playing = mpd_status_get_state(&status) == MPD_STATE_PLAY;
  const milliseconds elapsed(mpd_status_get_elapsed_ms(&status));
  m_NextLook.expires_after(playing ? std::max(s_Second - elapsed % s_Second, s_ShortestLook)
                                   : s_LongestLook);
  m_NextLook.async_wait([this](const boost::system::error_code& error) {
    if (error) return;
    m_Output.WhenRoom([this] {
      if (m_Online) AskState();
    });
  });
}

void Player::TellChangedLists(const mpd_status& status, bool wasOnline) {
  const unsigned version = mpd_status_get_queue_version(&status);
  const bool changed = std::exchange(m_QueueVersion, version) != version;
  if (!wasOnline) {
    m_Reports.ListChanged("");
  } else if (changed) {
    m_Reports.ListChanged("queue");
  }
}

void Player::Bind() {
  m_Told.clear();
  static constexpr struct {
    const char* capability;
    const char* command;
  } rows[] = {
      {"has_shuffle", "random"},    {"has_repeat", "repeat"},    {"has_play", "play"},
      {"has_pause", "pause"},       {"has_stop", "stop"},        {"has_skip_fwd", "next"},
      {"has_skip_rev", "previous"}, {"has_scan_fwd", "seekcur"}, {"has_scan_rev", "seekcur"},
      {"has_menu", "lsinfo"},       {"has_search", "search"},    {"has_browse", "lsinfo"}};
  nlohmann::ordered_json line = {{"bind", 5001}, {"class", "MUSIC_PLAYER"}};
  auto& capabilities = line["capabilities"];
  for (const auto& row : rows) capabilities[row.capability] = m_Allowed.contains(row.command);
  capabilities["shuffle_modes"] = s_ShuffleModes;
  capabilities["repeat_modes"] = s_RepeatModes;
  capabilities["media_labels"] = s_MediaLabels;
  m_Output.Say(line.dump());
}

// Of an MPD that is away nobody can say more than that nothing plays.
void Player::OnDown(const std::string& reason) {
  if (reason != std::exchange(m_Told, reason)) Complain("MPD is away: " + reason);
  m_NextLook.cancel();
  m_Commands.SetOnline(false);
  const bool wasOnline = std::exchange(m_Online, false);
  if (wasOnline) m_Reports.Playing({});
  m_CoverArt.OnDown();
  if (wasOnline) m_Reports.Say("ONLINE_STATUS_CHANGED", {{"online_status", "False"}});
  m_Reports.Forget();
}

void Player::OnChange(std::string_view subsystem) {
  static constexpr struct {
    std::string_view subsystem;
    const char* lists;
  } rows[] = {{"database", ""}, {"stored_playlist", "playlist"}, {"output", "output"}};
  for (const auto& row : rows) {
    if (m_Online && subsystem == row.subsystem) m_Reports.ListChanged(row.lists);
  }
  if (subsystem == "database") m_CoverArt.Recheck();
  AskState();
}

void Player::Reset() {
  m_Reports.Forget();
  m_CoverArt.Forget();
  AskState();
}

}  // namespace mpdplayer
