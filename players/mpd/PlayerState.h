#pragma once

#include "players/mpd/Song.h"

#include <mpd/status.h>

#include <memory>
#include <string_view>

namespace mpdplayer {

// The answer to a list of "status" and "currentsong", in this order; until then, that of a player
// that is stopped and has nothing to play.
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

}  // namespace mpdplayer
