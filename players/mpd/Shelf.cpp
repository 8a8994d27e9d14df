#include "players/mpd/Shelf.h"

#include "players/mpd/Filter.h"
#include "players/mpd/Id.h"
#include "players/mpd/Link.h"
#include "players/mpd/Song.h"

#include <algorithm>
#include <stdexcept>

namespace mpdplayer {

namespace {

// MPD ends connections whose answer fills its memory; more matches than this are not counted.
constexpr char s_SearchWindow[] = " window 0:10000";

// Starts with the id of what the actions are for.
constexpr char s_Actions[] = "actions:";

}  // namespace

struct Shelf::Top {
  const char* id;
  const char* title;
  const char* command;
  const char* tag;
  const char* itemKind;
};

struct Shelf::Row {
  const char* kind;
  void (Shelf::*set)(const std::string& value);
};

Shelf::Shelf(const std::string& id) {
  const auto [kind, value] = SplitId(id);
  if (kind.empty() || kind.back() != ':') {
    SetTop(id);
  } else {
    SetBelow(kind, value);
    m_Head.insert(m_Head.begin(), {s_Actions + id, "list", "Play or add all"});
  }
}

void Shelf::SetBelow(const std::string& kind, const std::string& value) {
  static constexpr Row rows[] = {
      {"album-of:", &Shelf::SetAlbum}, {"search:", &Shelf::SetSearch},
      {"folder:", &Shelf::SetFolder},  {"playlist:", &Shelf::SetPlaylist},
      {"all:", &Shelf::SetAllBelow},
  };
  for (const Row& row : rows) {
    if (kind == row.kind) return (this->*row.set)(value);
  }
  m_Title = Named(value);
  if (kind == "artist:") m_Artist = value;
  const std::string filter = FilterOf(kind, value);
  if (kind == "album:") return SetSongs(filter);
  SetSongs(filter);
  m_Total.clear();
  m_List = "list album " + Argument(filter) + " group albumartist";
  m_Tag = "Album";
  m_Head = {{"all:" + kind + value, "list", "All songs"}};
}

// The songs themselves, where the albums are listed otherwise.
void Shelf::SetAllBelow(const std::string& id) {
  const auto [kind, value] = SplitId(id);
  m_Title = Named(value);
  if (kind == "artist:") m_Artist = value;
  SetSongs(FilterOf(kind, value));
}

void Shelf::SetTop(const std::string& id) {
  static constexpr Top tops[] = {
      {"artists", "Artists", "list artist", "Artist", "artist:"},
      {"album-artists", "Album artists", "list albumartist", "AlbumArtist", "artist:"},
      {"albums", "Albums", "list album group albumartist", "Album", ""},
      {"genres", "Genres", "list genre", "Genre", "genre:"},
      {"years", "Years", "list date", "Date", "year:"},
      {"folders", "Folders", "lsinfo", "", ""},
      {"playlists", "Playlists", "listplaylists", "", ""},
      {"outputs", "Outputs", "outputs", "", ""},
  };
  if (id == "queue") return SetQueue();
  if (id == "recent") return SetRecent();
  const auto* const top = std::find_if(std::begin(tops), std::end(tops),
                                       [&id](const Top& each) { return id == each.id; });
  if (top == std::end(tops)) throw std::invalid_argument(s_NoSuchId);
  m_Title = top->title;
  m_List = top->command;
  m_Tag = top->tag;
  m_ItemKind = top->itemKind;
}

void Shelf::SetSongs(const std::string& filter) {
  m_Total = "count " + Argument(filter);
  m_List = "find " + Argument(filter);
  m_WindowPrefix = " window ";
  m_Add = "findadd " + Argument(filter);
  m_PlacePrefix = " position ";
}

void Shelf::SetAlbum(const std::string& value) {
  const auto [artist, album] = SplitAlbum(value);
  m_Title = Named(album);
  m_Artist = artist;
  SetSongs(AllOf({Is("albumartist", artist), Is("album", album)}));
}

void Shelf::SetSearch(const std::string& text) {
  const std::string filter = Argument(FilterOfWords(text));
  m_Title = text;
  m_List = "search " + filter + s_SearchWindow;
  m_Add = "searchadd " + filter + s_SearchWindow;
  m_PlacePrefix = " position ";
}

void Shelf::SetFolder(const std::string& path) {
  m_Title = LastName(path);
  m_List = "lsinfo " + Argument(path);
  m_Add = "add " + Argument(path);
  m_PlacePrefix = " ";
}

void Shelf::SetPlaylist(const std::string& name) {
  m_Title = LastName(name);
  m_Playlist = name;
  m_List = "listplaylistinfo " + Argument(name);
  m_Add = "load " + Argument(name);
  m_PlacePrefix = " 0: ";
}

void Shelf::SetQueue() {
  m_Title = "Queue";
  m_Total = "status";
  m_List = "playlistinfo";
  m_WindowPrefix = " ";
  m_Head = {{std::string(s_Actions) + "queue", "list", "Change the queue"}};
}

void Shelf::SetRecent() {
  SetSongs("(file != \"\")");
  m_Title = "Recently added";
  m_List += " sort -Last-Modified";
  m_Add.clear();
}

std::size_t Shelf::Skipped(Window window) const {
  return std::max(window.first, m_Head.size()) - m_Head.size();
}

std::string Shelf::List(Window window) const {
  if (!Windowed()) return m_List;
  const std::size_t first = Skipped(window);
  const std::size_t end = std::max(window.first + window.count, m_Head.size()) - m_Head.size();
  return CommandList(m_Total + '\n' + m_List + m_WindowPrefix + std::to_string(first) + ':' +
                     std::to_string(std::max(end, first)));
}

std::string Shelf::Add(const std::string& place) const {
  if (m_Add.empty()) throw std::invalid_argument("ID names no songs");
  return place.empty() ? m_Add : m_Add + m_PlacePrefix + place;
}

}  // namespace mpdplayer
