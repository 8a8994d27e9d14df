#include "players/mpd/Complaint.h"

#include <nlohmann/json.hpp>

#include <cstdio>

namespace mpdplayer {

void Complain(const std::string& text) {
  std::fputs(("mpd-player: " + text + '\n').c_str(), stderr);
}

std::string Quoted(std::string_view text) {
  using nlohmann::json;
  constexpr std::size_t limit = 200;
  const std::string shown(text.substr(0, limit));
  return json(shown).dump(-1, ' ', true, json::error_handler_t::replace) +
         (text.size() > limit ? "..." : "");
}

}  // namespace mpdplayer
