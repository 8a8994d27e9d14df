#include "players/mpd/Browser.h"

#include "players/mpd/Id.h"
#include "players/mpd/SessionLine.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace mpdplayer {

void Browser::Menu() {
  static const std::vector<ItemTexts> items = {
      {"artists", "list", "Artists"}, {"album-artists", "list", "Album artists"},
      {"albums", "list", "Albums"},   {"genres", "list", "Genres"},
      {"years", "list", "Years"},     {"recent", "list", "Recently added"},
      {"folders", "list", "Folders"}, {"playlists", "list", "Playlists"},
      {"queue", "list", "Queue"},     {"outputs", "list", "Outputs"},
      {"search", "search", "Search"},
  };
  m_Output.Say(NotifyLine(
      "NEW_MENU", {{"title", "Music player"}, {"num_items", std::to_string(items.size())}}));
  TellItems(m_Output, "ADD_MENU_ITEM", items);
}

void Browser::Browse(const std::string& id, Window window, Ended ended) {
  const auto [kind, value] = SplitId(id);
  if (Actions::IsAction(id)) {
    const char* const changed = kind == "output:" ? "outputs" : "queue";
    return m_Actions.Do(id, [this, changed, window, ended](const Outcome& outcome) {
      if (!outcome.Done()) return ended(outcome);
      List(Shelf(changed), window, ended);
    });
  }
  const bool song = kind == "song:" || kind == "track:" || kind == "queue:";
  if (kind == "actions:" || song) {
    const std::string& subject = song ? id : value;
    const std::string title = song ? LastName(value) : Shelf(subject).Title();
    Part(title, Actions::For(subject), window);
    return ended({});
  }
  List(Shelf(id), window, std::move(ended));
}

void Browser::Part(const std::string& title, const std::vector<ItemTexts>& items, Window window) {
  const std::size_t first = std::min(window.first, items.size());
  const auto begin = items.begin() + static_cast<std::ptrdiff_t>(first);
  const auto count = static_cast<std::ptrdiff_t>(std::min(window.count, items.size() - first));
  TellList(m_Output, title, items.size(), window, {begin, begin + count});
}

void Browser::TellNothing(const std::string& title, Window window) {
  TellList(m_Output, title, 0, window, {});
}

// MPD refuses a part of the queue beyond its end, but says first how long it is.
void Browser::List(Shelf shelf, Window window, Ended ended) {
  const std::string command = shelf.List(window);
  const auto listing = std::make_shared<Listing>(std::move(shelf), window);
  m_Link.AskNext(
      {command,
       [listing](std::string_view name, std::string_view value) { listing->Take(name, value); },
       [this, listing, ended = std::move(ended)](const Outcome& outcome) {
         const bool beyond = outcome.kind == Outcome::Kind::Refused && listing->Counted();
         if (!outcome.Done() && !beyond) return ended(outcome);
         listing->Tell(m_Output);
         ended({});
       }});
}

}  // namespace mpdplayer
