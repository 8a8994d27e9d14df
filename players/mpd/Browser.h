#pragma once

#include "players/mpd/Actions.h"
#include "players/mpd/Link.h"
#include "players/mpd/Listing.h"
#include "players/mpd/Output.h"

#include <string>
#include <vector>

namespace mpdplayer {

// Answers requests for menus and lists. An operation throws std::invalid_argument for a wrong
// argument; what MPD makes of it goes to `ended` later.
class Browser {
 public:
  Browser(Link& link, Output& output, Actions& actions)
      : m_Link(link), m_Output(output), m_Actions(actions) {}

  void Menu();

  // Lists what is below the item. An action is carried out, and answered with what it has changed.
  void Browse(const std::string& id, Window window, Ended ended);

  // Tells an empty list, for what cannot be listed.
  void TellNothing(const std::string& title, Window window);

 private:
  void Part(const std::string& title, const std::vector<ItemTexts>& items, Window window);
  void List(Shelf shelf, Window window, Ended ended);

  Link& m_Link;
  Output& m_Output;
  Actions& m_Actions;
};

}  // namespace mpdplayer
