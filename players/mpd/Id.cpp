#include "players/mpd/Id.h"

#include <algorithm>
#include <stdexcept>

namespace mpdplayer {

namespace {

std::string Escaped(const std::string& artist) {
  std::string escaped;
  for (const char c : artist) {
    if (c == '%') {
      escaped += "%25";
    } else if (c == '/') {
      escaped += "%2F";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string Unescaped(std::string artist) {
  for (std::size_t at = 0; (at = artist.find('%', at)) != std::string::npos; ++at) {
    artist.replace(at, 3, artist.compare(at, 3, "%2F") == 0 ? "/" : "%");
  }
  return artist;
}

}  // namespace

std::pair<std::string, std::string> SplitId(const std::string& id) {
  const std::size_t end = std::min(id.find(':'), id.size() - 1) + 1;
  return {id.substr(0, end), id.substr(end)};
}

std::string AlbumId(const std::string& artist, const std::string& album) {
  return "album-of:" + Escaped(artist) + '/' + album;
}

std::pair<std::string, std::string> SplitAlbum(const std::string& value) {
  const std::size_t slash = value.find('/');
  if (slash == std::string::npos) throw std::invalid_argument(s_NoSuchId);
  return {Unescaped(value.substr(0, slash)), value.substr(slash + 1)};
}

Place SplitPlace(const std::string& value) {
  const std::size_t colon = value.find(':');
  const std::string number = value.substr(0, colon);
  const bool digits = number.find_first_not_of("0123456789") == std::string::npos;
  if (colon == std::string::npos || colon + 1 == value.size() || number.empty() || !digits ||
      number.size() > 9) {
    throw std::invalid_argument(s_NoSuchId);
  }
  return {number, value.substr(colon + 1)};
}

std::string QueueId(const QueueItem& item) {
  return "queue:" + item.position + (item.range.empty() ? "" : '@' + item.range) + ':' + item.uri;
}

QueueItem ReadQueueId(const std::string& value) {
  const std::size_t colon = value.find(':');
  const std::size_t at = value.find('@');
  if (at >= colon) {
    const Place place = SplitPlace(value);
    return {place.number, {}, place.rest};
  }
  const Place place = SplitPlace(value.substr(0, at) + value.substr(std::min(colon, value.size())));
  return {place.number, value.substr(at + 1, colon - at - 1), place.rest};
}

}  // namespace mpdplayer
