#include "players/mpd/Reports.h"

#include "players/mpd/Id.h"

#include <algorithm>
#include <utility>

namespace mpdplayer {

namespace {

std::string ClockText(unsigned time) {
  const std::string rest = std::to_string(time % 60);
  return std::to_string(time / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

const char* PlayStatus(mpd_state state) {
  if (state == MPD_STATE_PLAY) return "Playing";
  return state == MPD_STATE_PAUSE ? "Paused" : "Stopped";
}

// Without "repeat", "single" means that MPD stops after the song.
const char* RepeatMode(const mpd_status& status) {
  switch (mpd_status_get_single_state(&status)) {
    case MPD_SINGLE_ONESHOT:
      return "Oneshot";
    case MPD_SINGLE_ON:
      return mpd_status_get_repeat(&status) ? "One" : "Single";
    default:
      return mpd_status_get_repeat(&status) ? "All" : "Off";
  }
}

bool IsStopped(const mpd_status& status) {
  const mpd_state state = mpd_status_get_state(&status);
  return state != MPD_STATE_PLAY && state != MPD_STATE_PAUSE;
}

}  // namespace

void Reports::Say(const std::string& notification, const Params& params) {
  std::string line = NotifyLine(notification, params);
  std::string& said = m_Said[notification];
  if (said == line) return;
  m_Output.Say(line);
  said = std::move(line);
}

void Reports::ListChanged(const std::string& id) {
  m_Output.Say(NotifyLine("LIST_CHANGED", {{"id", id}}));
}

void Reports::Playing(const PlayerState& state) {
  const mpd_status& status = state.Status();
  Say("PLAY_STATUS_CHANGED", {{"play_status", PlayStatus(mpd_status_get_state(&status))}});
  MediaInfo(state.Song());
  PlayingItem(state);
  const int position = mpd_status_get_song_pos(&status);
  Say("QUEUE_PROGRESS_CHANGED", {{"current", std::to_string(std::max<long long>(position, -1) + 1)},
                                 {"total", std::to_string(mpd_status_get_queue_length(&status))}});
  Time(status);
  m_Volume.Take(mpd_status_get_volume(&status));
  Say("VOLUME_CHANGED", m_Volume.Params());
  const char* const error = mpd_status_get_error(&status);
  Say("PLAYER_ERROR", {{"command", ""}, {"text", error ? error : ""}});
}

void Reports::Settings(const mpd_status& status) {
  Say("SET_SHUFFLE_MODES", {{"shuffle_modes", s_ShuffleModes}});
  Say("SET_REPEAT_MODES", {{"repeat_modes", s_RepeatModes}});
  Say("SET_MEDIA_LABELS", {{"media_labels", s_MediaLabels}});
  Say("SHUFFLE_CHANGED", {{"shuffle_mode", mpd_status_get_random(&status) ? "On" : "Off"}});
  Say("REPEAT_CHANGED", {{"repeat_mode", RepeatMode(status)}});
  Say("CONSUME_CHANGED", {{"mode", mpd_status_get_consume(&status) ? "On" : "Off"}});
  Say("CROSSFADE_CHANGED", {{"seconds", std::to_string(mpd_status_get_crossfade(&status))}});
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

// A part of a file is another item in each list that shows it.
void Reports::PlayingItem(const PlayerState& state) {
  const Song& song = state.Song();
  const bool none = IsStopped(state.Status()) || song.uri.empty();
  Say("PLAYING_ITEM_CHANGED",
      {{"song", none || !song.range.empty() ? "" : "song:" + song.uri},
       {"queue", none ? "" : QueueId({song.position, song.range, song.uri})}});
}

void Reports::Time(const mpd_status& status) {
  if (IsStopped(status)) {
    return Say("PLAY_TIME_CHANGED", {{"elapsed", "0:00"}, {"remaining", "0:00"}});
  }
  const unsigned elapsed = mpd_status_get_elapsed_ms(&status) / 1000;
  const unsigned duration = mpd_status_get_total_time(&status);
  const std::string remaining = ClockText(std::max(duration, elapsed) - elapsed);
  Say("PLAY_TIME_CHANGED",
      {{"elapsed", ClockText(elapsed)}, {"remaining", duration > 0 ? remaining : ""}});
}

}  // namespace mpdplayer
