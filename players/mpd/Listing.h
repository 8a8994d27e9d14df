#pragma once

#include "players/mpd/Output.h"
#include "players/mpd/Song.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mpdplayer {

// The part of a list that was asked for.
struct Window {
  std::size_t first = 0;
  std::size_t count = 100;
};

// A list on its way from MPD's answer to the driver: counts all items, keeps those in the window.
class Listing {
 public:
  struct Kind {
    std::string title;
    std::string tag;                         // each value of this tag is an item, too
    std::string itemKind;                    // what the ids of such items start with
    std::optional<std::size_t> queueLength;  // for the queue, whose answer starts at the window
  };

  Listing(Kind kind, Window window);

  void Take(std::string_view name, std::string_view value);

  void Tell(Output& output) const;

 private:
  struct Item {
    std::string type;
    std::string value;
    Song song;
  };

  void Start(std::string type, std::string_view value);
  std::string IdOf(const Item& item) const;
  static std::string TextOf(const Item& item);

  Kind m_Kind;
  Window m_Window;
  std::size_t m_Count;
  std::vector<Item> m_Items;
  bool m_InWindow = false;
};

// Sends the items of a menu or a list, which the driver passes on with the last one.
struct ItemTexts {
  std::string id;
  std::string type;
  std::string text;
};
void TellItems(Output& output, const std::string& notification,
               const std::vector<ItemTexts>& items);

}  // namespace mpdplayer
