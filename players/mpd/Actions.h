#pragma once

#include "players/mpd/Link.h"
#include "players/mpd/Queue.h"
#include "players/mpd/Shelf.h"

#include <string>
#include <vector>

namespace mpdplayer {

// Items that do something when they are chosen. Their ids say what, and to which item:
// "now:ID", "next:ID", "end:ID", "remove:ID", "clear:queue", "output:NUMBER".
class Actions {
 public:
  Actions(Link& link, Queue& queue) : m_Link(link), m_Queue(queue) {}

  static bool IsAction(const std::string& id);

  // What can be done with an item.
  static std::vector<ItemTexts> For(const std::string& id);

  // Throws std::invalid_argument when it cannot be done with that item.
  void Do(const std::string& id, const Ended& ended);

 private:
  void Now(const std::string& id, const Ended& ended);
  void Next(const std::string& id, const Ended& ended);
  void End(const std::string& id, const Ended& ended);
  void Remove(const std::string& id, const Ended& ended);
  void Clear(const std::string& id, const Ended& ended);
  void Switch(const std::string& output, const Ended& ended);

  struct Row {
    const char* verb;
    void (Actions::*handler)(const std::string& id, const Ended& ended);
  };
  static const Row* Find(const std::string& verb);

  Link& m_Link;
  Queue& m_Queue;
};

}  // namespace mpdplayer
