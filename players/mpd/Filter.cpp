#include "players/mpd/Filter.h"

#include "players/mpd/Id.h"
#include "players/mpd/Link.h"

#include <sstream>
#include <stdexcept>

namespace mpdplayer {

namespace {

// MPD's expressions have no "or".
std::string AnyOf(const std::string& one, const std::string& other) {
  return "(!((!" + one + ") AND (!" + other + ")))";
}

std::string Contains(const std::string& tag, const std::string& value) {
  return '(' + tag + " contains " + Argument(value) + ')';
}

}  // namespace

std::string Is(const std::string& tag, const std::string& value) {
  return '(' + tag + " == " + Argument(value) + ')';
}

std::string AllOf(const std::vector<std::string>& expressions) {
  if (expressions.size() == 1) return expressions.front();
  std::string all;
  for (const std::string& each : expressions) all += (all.empty() ? "(" : " AND ") + each;
  return all + ')';
}

std::string FilterOf(const std::string& kind, const std::string& value) {
  if (kind == "artist:") return AnyOf(Is("artist", value), Is("albumartist", value));
  if (kind == "album:") return Is("album", value);
  if (kind == "genre:") return Is("genre", value);
  if (kind == "year:") return value.empty() ? Is("date", value) : Contains("date", value);
  throw std::invalid_argument(s_NoSuchId);
}

std::string FilterOfWords(const std::string& text) {
  std::istringstream words(text);
  std::vector<std::string> all;
  for (std::string word; words >> word;) {
    all.push_back(AnyOf(Contains("any", word), AllOf({Is("title", ""), Contains("file", word)})));
  }
  if (all.empty()) throw std::invalid_argument("TEXT has no word");
  return AllOf(all);
}

}  // namespace mpdplayer
