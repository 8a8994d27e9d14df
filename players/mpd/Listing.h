#pragma once

#include "players/mpd/Output.h"
#include "players/mpd/Shelf.h"
#include "players/mpd/Song.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mpdplayer {

// A list on its way from MPD's answer to the driver: counts all items, keeps those in the window.
class Listing {
 public:
  Listing(Shelf shelf, Window window) : m_Shelf(std::move(shelf)), m_Window(window) {}

  void Take(std::string_view name, std::string_view value);

  // Whether MPD has said all that it has to say, even when it refuses the rest.
  bool Counted() const { return m_Total.has_value(); }

  void Tell(Output& output) const;

 private:
  struct Item {
    std::string type;
    std::string value;
    std::string albumArtist;
    Song song;
    std::size_t place = 0;
  };

  void TakeTotal(std::string_view name, std::string_view value);
  void TakeOutput(std::string_view name, std::string_view value);
  void Start(const char* type, std::string_view value);
  bool InWindow(std::size_t place) const;
  std::size_t Total() const;
  ItemTexts TextsOf(const Item& item) const;
  std::string IdOf(const Item& item) const;
  std::string TextOf(const Item& item) const;

  Shelf m_Shelf;
  Window m_Window;
  std::optional<std::size_t> m_Total;  // as MPD says
  std::size_t m_Count = 0;             // of MPD's items
  std::string m_AlbumArtist;           // of the albums that follow
  std::string m_Last;                  // the value of the last item
  std::vector<Item> m_Items;
  bool m_Kept = false;  // whether the item that MPD speaks of is in m_Items
};

// Sends a list, or a menu's or list's items, which the driver passes on with the last one.
void TellList(Output& output, const std::string& title, std::size_t total, Window window,
              const std::vector<ItemTexts>& items);
void TellItems(Output& output, const std::string& notification,
               const std::vector<ItemTexts>& items);

}  // namespace mpdplayer
