#include "players/mpd/Volume.h"

#include <string>

namespace mpdplayer {

void Volume::Take(int volume) {
  m_Volume = volume;
  if (volume > 0) m_Muted.reset();
}

Params Volume::Params() const {
  const int shown = m_Volume == 0 ? m_Muted.value_or(0) : m_Volume;
  return {{"volume", shown < 0 ? "" : std::to_string(shown)},
          {"mute", m_Volume == 0 && m_Muted ? "True" : "False"}};
}

void Volume::Set(int volume, const Ended& ended) { Ask(volume, {}, ended); }

void Volume::Mute(bool on, const Ended& ended) {
  if (on == m_Muted.has_value()) return ended({});
  if (on) return Ask(0, m_Volume, ended);
  Ask(*m_Muted, {}, ended);
}

void Volume::Ask(int volume, std::optional<int> muted, const Ended& ended) {
  m_Link.AskNext(
      {"setvol " + std::to_string(volume), {}, [this, muted, ended](const Outcome& outcome) {
         if (outcome.Done()) {
           m_Muted = muted;
           m_OnMute();
         }
         ended(outcome);
       }});
}

}  // namespace mpdplayer
