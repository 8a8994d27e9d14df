#pragma once

#include "players/mpd/Output.h"
#include "players/mpd/PlayerState.h"
#include "players/mpd/SessionLine.h"
#include "players/mpd/Volume.h"

#include <map>
#include <string>

namespace mpdplayer {

inline constexpr char s_ShuffleModes[] = "Off,On";
inline constexpr char s_RepeatModes[] = "Off,All,One,Single,Oneshot";
inline constexpr char s_MediaLabels[] = "Title,Artist,Album";

// Tells the driver what MPD does, and repeats nothing that has not changed.
class Reports {
 public:
  Reports(Output& output, Volume& volume) : m_Output(output), m_Volume(volume) {}

  // Sends the notification unless it says what it said last.
  void Say(const std::string& notification, const Params& params);

  // What plays, and how MPD has been set.
  void Playing(const PlayerState& state);
  void Settings(const mpd_status& status);

  // Lists whose id begins like this have changed.
  void ListChanged(const std::string& id);

  // Forgets what was sent, so that everything is sent again.
  void Forget() { m_Said.clear(); }

 private:
  void MediaInfo(const Song& song);
  void PlayingItem(const PlayerState& state);
  void Time(const mpd_status& status);

  Output& m_Output;
  Volume& m_Volume;
  std::map<std::string, std::string> m_Said;
};

}  // namespace mpdplayer
