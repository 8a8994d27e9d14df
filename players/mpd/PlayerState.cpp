#include "players/mpd/PlayerState.h"

#include <mpd/pair.h>

#include <new>
#include <string>

namespace mpdplayer {

PlayerState::PlayerState() : m_Status(mpd_status_begin(), &mpd_status_free) {
  if (!m_Status) throw std::bad_alloc();
}

void PlayerState::Take(std::string_view name, std::string_view value) {
  m_Song.Take(name, value);
  if (!m_Song.uri.empty()) return;
  const std::string key(name);
  const std::string text(value);
  const mpd_pair pair = {key.c_str(), text.c_str()};
  mpd_status_feed(m_Status.get(), &pair);
}

}  // namespace mpdplayer
