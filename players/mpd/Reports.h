#pragma once

#include "players/mpd/Link.h"
#include "players/mpd/Output.h"
#include "players/mpd/SessionLine.h"
#include "players/mpd/Song.h"

#include <mpd/status.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace mpdplayer {

// The answer to a list of "status" and "currentsong", in this order.
class PlayerState {
 public:
  PlayerState();
  void Take(std::string_view name, std::string_view value);
  const mpd_status& Status() const { return *m_Status; }
  const mpdplayer::Song& Song() const { return m_Song; }

 private:
  std::unique_ptr<mpd_status, void (*)(mpd_status*)> m_Status;
  mpdplayer::Song m_Song;
};

inline constexpr char s_ShuffleModes[] = "Off,On";
inline constexpr char s_RepeatModes[] = "Off,All,One";
inline constexpr char s_MediaLabels[] = "Title,Artist,Album";

// Tells the driver what MPD does, and repeats nothing that has not changed.
class Reports {
 public:
  explicit Reports(Output& output) : m_Output(output) {}

  // Sends the notification unless it says what it said last.
  void Say(const std::string& notification, const Params& params);

  void Modes();
  void State(const PlayerState& state);

  // The play time goes on without MPD: Tick is due at NextTick.
  Clock::time_point NextTick() const { return m_NextTick; }
  void Tick();

  // Forgets what was sent, so that everything is sent again.
  void Forget();

 private:
  void MediaInfo(const Song& song);
  void StartClock(const mpd_status& status);

  Output& m_Output;
  std::map<std::string, std::string> m_Said;
  Clock::time_point m_NextTick = Clock::time_point::max();
  Clock::time_point m_Start;  // when the elapsed time was zero, or would have been
  unsigned m_Duration = 0;    // seconds, 0 when it has no end
};

}  // namespace mpdplayer
