#include "players/mpd/Listing.h"

#include "players/mpd/Id.h"
#include "players/mpd/SessionLine.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace mpdplayer {

namespace {

// Between a title or an album and its artist.
constexpr char s_By[] = " – ";

const char* TypeOfTag(std::string_view tag) {
  if (tag == "Album") return "album";
  if (tag == "Genre") return "genre";
  return tag == "Date" ? "year" : "artist";
}

}  // namespace

void Listing::Take(std::string_view name, std::string_view value) {
  static constexpr struct {
    std::string_view name;
    const char* type;
  } rows[] = {
      {"file", "song"}, {"directory", "folder"}, {"playlist", "playlist"}, {"outputid", "output"}};
  if (m_Shelf.Windowed() && !m_Total) return TakeTotal(name, value);
  if (name == m_Shelf.Tag())
    return Start(TypeOfTag(name), value.substr(0, name == "Date" ? 4 : std::string_view::npos));
  if (m_Shelf.Tag() == "Album" && name == "AlbumArtist") m_AlbumArtist = value;
  for (const auto& row : rows) {
    if (name == row.name) Start(row.type, value);
  }
  if (m_Kept) m_Items.back().song.Take(name, value);
}

void Listing::TakeTotal(std::string_view name, std::string_view value) {
  if (name != "songs" && name != "playlistlength") return;
  std::size_t total = 0;
  std::from_chars(value.data(), value.data() + value.size(), total);
  m_Total = total;
  m_Count = std::min(m_Shelf.Skipped(m_Window), total);
}

// Dates that share their year come one after the other.
void Listing::Start(const char* type, std::string_view value) {
  if (m_Shelf.Tag() == "Date" && m_Count > 0 && value == m_Last) return;
  m_Last = value;
  m_Kept = InWindow(m_Shelf.Head().size() + m_Count);
  if (m_Kept) m_Items.push_back({type, std::string(value), m_AlbumArtist, {}, m_Count});
  ++m_Count;
}

bool Listing::InWindow(std::size_t place) const {
  return place >= m_Window.first && place - m_Window.first < m_Window.count;
}

std::size_t Listing::Total() const {
  const std::size_t total = m_Total.value_or(m_Count);
  return total == 0 ? 0 : total + m_Shelf.Head().size();
}

std::string Listing::IdOf(const Item& item) const {
  if (item.type == "album") return AlbumId(item.albumArtist, item.value);
  if (!m_Shelf.Tag().empty()) return m_Shelf.ItemKind() + item.value;
  if (!item.song.position.empty())
    return QueueId({item.song.position, item.song.range, item.value});
  if (!item.song.range.empty()) {
    return "track:" + std::to_string(item.place) + ':' + m_Shelf.Playlist();
  }
  return item.type + ':' + item.value;
}

std::string Listing::TextOf(const Item& item) const {
  const Song& song = item.song;
  if (item.type == "output") return song.output + (song.enabled == "1" ? " (on)" : " (off)");
  if (item.type == "folder" || item.type == "playlist") return LastName(item.value);
  const std::string text = item.type == "song" ? song.Text() : Named(item.value);
  const std::string& artist = item.type == "song" ? song.artist : item.albumArtist;
  return artist.empty() || artist == m_Shelf.Artist() ? text : text + s_By + artist;
}

void Listing::Tell(Output& output) const {
  std::vector<ItemTexts> items;
  const std::size_t total = Total();
  for (std::size_t place = 0; total > 0 && place < m_Shelf.Head().size(); ++place) {
    if (InWindow(place)) items.push_back(m_Shelf.Head()[place]);
  }
  for (const Item& item : m_Items) items.push_back({IdOf(item), item.type, TextOf(item)});
  TellList(output, m_Shelf.Title(), total, m_Window, items);
}

// The driver passes a list on with its last item, so an empty list needs an item, too.
void TellList(Output& output, const std::string& title, std::size_t total, Window window,
              const std::vector<ItemTexts>& items) {
  output.Say(NotifyLine("NEW_LIST", {{"title", title},
                                     {"total_items", std::to_string(total)},
                                     {"num_items", std::to_string(items.size())},
                                     {"first", std::to_string(window.first)},
                                     {"clear", window.first == 0 ? "True" : "False"}}));
  TellItems(output, "ADD_LIST_ITEM", items.empty() ? std::vector<ItemTexts>{{}} : items);
}

void TellItems(Output& output, const std::string& notification,
               const std::vector<ItemTexts>& items) {
  for (const ItemTexts& item : items) {
    output.Say(NotifyLine(notification, {{"id", item.id},
                                         {"type", item.type},
                                         {"text", item.text},
                                         {"last", &item == &items.back() ? "True" : "False"}}));
  }
}

}  // namespace mpdplayer
