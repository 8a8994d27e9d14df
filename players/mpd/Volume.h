#pragma once

#include "players/mpd/Link.h"
#include "players/mpd/SessionLine.h"

#include <functional>
#include <optional>
#include <utility>

namespace mpdplayer {

// MPD's volume. MPD knows no mute: meanwhile its volume is 0, and the one to go back to is kept
// here.
class Volume {
 public:
  // `onMute` is called when it has been muted, or is no longer.
  Volume(Link& link, std::function<void()> onMute) : m_Link(link), m_OnMute(std::move(onMute)) {}

  // What MPD says; -1 when it has none.
  void Take(int volume);

  // For VOLUME_CHANGED.
  mpdplayer::Params Params() const;

  void Set(int volume, const Ended& ended);
  void Mute(bool on, const Ended& ended);

 private:
  void Ask(int volume, std::optional<int> muted, const Ended& ended);

  Link& m_Link;
  std::function<void()> m_OnMute;
  int m_Volume = -1;
  std::optional<int> m_Muted;  // the volume that comes back
};

}  // namespace mpdplayer
