#include "players/mpd/Song.h"

namespace mpdplayer {

void Song::Take(std::string_view tag, std::string_view value) {
  static constexpr struct {
    std::string_view tag;
    std::string Song::*text;
  } rows[] = {{"file", &Song::uri},
              {"Title", &Song::title},
              {"Artist", &Song::artist},
              {"Album", &Song::album},
              {"Name", &Song::name},
              {"Pos", &Song::position},
              {"Id", &Song::id},
              {"Range", &Song::range},
              {"outputname", &Song::output},
              {"outputenabled", &Song::enabled}};
  for (const auto& row : rows) {
    if (tag != row.tag) continue;
    std::string& text = this->*row.text;
    if (!text.empty()) text += "; ";
    text += value;
  }
}

std::string Song::Text() const {
  if (!title.empty()) return title;
  return name.empty() ? LastName(uri) : name;
}

std::string LastName(const std::string& path) {
  const std::string last = path.substr(path.rfind('/') + 1);
  return last.empty() ? path : last;
}

std::string Named(const std::string& value) { return value.empty() ? "Unknown" : value; }

}  // namespace mpdplayer
