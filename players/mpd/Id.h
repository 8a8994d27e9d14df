#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace mpdplayer {

inline constexpr char s_NoSuchId[] = "ID names nothing that is here";

// An id's kind with its colon, and what follows it.
std::pair<std::string, std::string> SplitId(const std::string& id);

// An artist within an id, where a slash and the album follow.
std::string AlbumId(const std::string& artist, const std::string& album);
std::pair<std::string, std::string> SplitAlbum(const std::string& value);

// A place in a list and what is there: "PLACE:REST". Throws std::invalid_argument.
struct Place {
  std::string number;
  std::string rest;
};
Place SplitPlace(const std::string& value);

// What the queue holds: "queue:PLACE:URI", and for a part of a file "queue:PLACE@RANGE:URI".
struct QueueItem {
  std::string position;
  std::string range;
  std::string uri;
};
std::string QueueId(const QueueItem& item);
QueueItem ReadQueueId(const std::string& value);

}  // namespace mpdplayer
