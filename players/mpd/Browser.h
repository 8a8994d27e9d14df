#pragma once

#include "players/mpd/Link.h"
#include "players/mpd/Listing.h"
#include "players/mpd/Output.h"

#include <functional>
#include <string>

namespace mpdplayer {

// Answers requests for menus and lists. An item's id says all that is needed to find it again:
// "artist:NAME", "album:NAME", "album-of:ARTIST/NAME", "folder:PATH", "playlist:NAME", "song:URI"
// and "queue:POSITION:URI". Each operation throws std::invalid_argument for a wrong argument; what
// MPD refuses goes to `refused` later.
class Browser {
 public:
  using Refused = std::function<void(const std::string& why)>;

  Browser(Link& link, Output& output) : m_Link(link), m_Output(output) {}

  void Menu();
  void Browse(const std::string& id, Window window, Refused refused);
  void Search(const std::string& text, Window window, Refused refused);

  // Plays a song where it stands in the queue; one that is not there is added first.
  void Play(const std::string& id, const Refused& refused);

  void SetQueueLength(std::size_t length) { m_QueueLength = length; }

 private:
  void List(const std::string& command, Listing::Kind kind, Window window, Refused refused);
  void BrowseQueue(Window window, Refused refused);
  void Add(const std::string& uri, const Refused& refused);
  void PlayId(const std::string& id, const Refused& refused);

  Link& m_Link;
  Output& m_Output;
  std::size_t m_QueueLength = 0;
};

}  // namespace mpdplayer
