#include "players/mpd/Listing.h"

#include "players/mpd/SessionLine.h"

#include <algorithm>
#include <utility>

namespace mpdplayer {

Listing::Listing(Kind kind, Window window)
    : m_Kind(std::move(kind)),
      m_Window(window),
      m_Count(std::min(window.first, m_Kind.queueLength.value_or(0))) {}

void Listing::Take(std::string_view name, std::string_view value) {
  static constexpr struct {
    std::string_view name;
    const char* type;
  } rows[] = {{"file", "song"}, {"directory", "folder"}, {"playlist", "playlist"}};
  if (name == m_Kind.tag) return Start(name == "Artist" ? "artist" : "album", value);
  for (const auto& row : rows) {
    if (name == row.name) Start(row.type, value);
  }
  if (m_InWindow) m_Items.back().song.Take(name, value);
}

void Listing::Start(std::string type, std::string_view value) {
  m_InWindow = m_Count >= m_Window.first && m_Count - m_Window.first < m_Window.count;
  ++m_Count;
  if (m_InWindow) m_Items.push_back({std::move(type), std::string(value), {}});
}

std::string Listing::IdOf(const Item& item) const {
  if (!m_Kind.tag.empty()) return m_Kind.itemKind + item.value;
  const std::string place = m_Kind.queueLength ? "queue:" + item.song.position : item.type;
  return place + ':' + item.value;
}

std::string Listing::TextOf(const Item& item) {
  if (item.type == "song") return item.song.Text();
  if (item.type == "folder") return LastName(item.value);
  return Named(item.value);
}

// The driver passes a list on with its last item, so an empty list needs an item, too.
void Listing::Tell(Output& output) const {
  const std::size_t total = std::max(m_Count, m_Kind.queueLength.value_or(0));
  output.Say(NotifyLine("NEW_LIST", {{"title", m_Kind.title},
                                     {"total_items", std::to_string(total)},
                                     {"num_items", std::to_string(m_Items.size())},
                                     {"first", std::to_string(m_Window.first)},
                                     {"clear", m_Window.first == 0 ? "True" : "False"}}));
  std::vector<ItemTexts> items;
  for (const Item& item : m_Items) items.push_back({IdOf(item), item.type, TextOf(item)});
  if (total == 0) items.push_back({"", "none", "Nothing found"});
  TellItems(output, "ADD_LIST_ITEM", items);
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
