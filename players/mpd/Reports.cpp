#include "players/mpd/Reports.h"

#include <mpd/pair.h>

#include <algorithm>
#include <new>

namespace mpdplayer {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

std::string ClockText(long long time) {
  const std::string rest = std::to_string(time % 60);
  return std::to_string(time / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

const char* PlayStatus(mpd_state state) {
  if (state == MPD_STATE_PLAY) return "Playing";
  return state == MPD_STATE_PAUSE ? "Paused" : "Stopped";
}

const char* RepeatMode(const mpd_status& status) {
  if (!mpd_status_get_repeat(&status)) return "Off";
  return mpd_status_get_single(&status) ? "One" : "All";
}

}  // namespace

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

void Reports::Say(const std::string& notification, const Params& params) {
  std::string line = NotifyLine(notification, params);
  std::string& said = m_Said[notification];
  if (said == line) return;
  m_Output.Say(line);
  said = std::move(line);
}

void Reports::Forget() {
  m_Said.clear();
  m_NextTick = Clock::time_point::max();
}

void Reports::Modes() {
  Say("SET_SHUFFLE_MODES", {{"shuffle_modes", s_ShuffleModes}});
  Say("SET_REPEAT_MODES", {{"repeat_modes", s_RepeatModes}});
  Say("SET_MEDIA_LABELS", {{"media_labels", s_MediaLabels}});
}

void Reports::State(const PlayerState& state) {
  const mpd_status& status = state.Status();
  Say("PLAY_STATUS_CHANGED", {{"play_status", PlayStatus(mpd_status_get_state(&status))}});
  Say("SHUFFLE_CHANGED", {{"shuffle_mode", mpd_status_get_random(&status) ? "On" : "Off"}});
  Say("REPEAT_CHANGED", {{"repeat_mode", RepeatMode(status)}});
  MediaInfo(state.Song());
  const int position = mpd_status_get_song_pos(&status);
  Say("QUEUE_PROGRESS_CHANGED", {{"current", std::to_string(std::max<long long>(position, -1) + 1)},
                                 {"total", std::to_string(mpd_status_get_queue_length(&status))}});
  StartClock(status);
}

// A station's name stands where other songs have their album.
void Reports::MediaInfo(const Song& song) {
  const bool station = song.album.empty() && !song.title.empty();
  const Params params = {{"media_info_1", song.Text()},
                         {"media_info_2", song.artist},
                         {"media_info_3", station ? song.name : song.album}};
  Say("UPDATE_MEDIA_INFO", params);
  Say("MEDIA_INFO_CHANGED", params);
}

void Reports::StartClock(const mpd_status& status) {
  const mpd_state state = mpd_status_get_state(&status);
  m_Duration = mpd_status_get_total_time(&status);
  m_Start = Clock::now() - milliseconds(mpd_status_get_elapsed_ms(&status));
  if (state == MPD_STATE_PLAY || state == MPD_STATE_PAUSE) {
    Tick();
  } else {
    Say("PLAY_TIME_CHANGED", {{"elapsed", "0:00"}, {"remaining", "0:00"}});
  }
  if (state != MPD_STATE_PLAY) m_NextTick = Clock::time_point::max();
}

void Reports::Tick() {
  const auto elapsed = std::chrono::duration_cast<seconds>(Clock::now() - m_Start).count();
  const auto remaining = std::max<long long>(m_Duration - elapsed, 0);
  const bool ending = m_Duration > 0 && remaining == 0;
  m_NextTick = ending ? Clock::time_point::max() : m_Start + seconds(elapsed + 1);
  Say("PLAY_TIME_CHANGED",
      {{"elapsed", ClockText(elapsed)}, {"remaining", m_Duration > 0 ? ClockText(remaining) : ""}});
}

}  // namespace mpdplayer
