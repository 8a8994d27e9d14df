#pragma once

#include "players/mpd/Id.h"
#include "players/mpd/Link.h"
#include "players/mpd/Song.h"

#include <cstddef>
#include <functional>
#include <string>

namespace mpdplayer {

// Plays items and edits MPD's queue. An operation throws std::invalid_argument for an id that it
// has no use for; what MPD makes of it goes to `ended` later.
class Queue {
 public:
  enum class Where { Now, Next, End };

  explicit Queue(Link& link) : m_Link(link) {}

  // A song is played where it stands in the queue, or from its end; all else as Add with Now.
  void Play(const std::string& id, const Ended& ended);

  // An item of the queue is moved, or just played.
  void Add(const std::string& id, Where where, const Ended& ended);

  void Remove(const std::string& id, const Ended& ended);
  void Move(const std::string& id, std::size_t to, const Ended& ended);

 private:
  // What MPD says of the queue: how long it is, and the place of the song that plays or would, the
  // length if there is none.
  struct Extent {
    std::size_t length = 0;
    std::size_t current = 0;
  };
  using AddCommand = std::function<std::string(const std::string& place)>;
  using OnFound = std::function<void(const Song& song)>;

  static AddCommand CommandFor(const std::string& id);
  void PlayHere(const QueueItem& item, AddCommand otherwise, const Ended& ended);
  void PlayTrack(const std::string& id, const Ended& ended);
  void Insert(AddCommand command, Where where, bool play, const Ended& ended);
  void InsertAt(const AddCommand& command, Extent extent, std::size_t place, bool play,
                const Ended& ended);
  void MoveItem(const std::string& id, Where where, const Ended& ended);
  void Ask(const std::string& command, const Ended& ended);
  void AskExtent(std::function<void(Extent extent)> then, const Ended& ended);

  // The song found has no id if it is not there.
  void Locate(const QueueItem& item, OnFound then, const Ended& ended);

  // The same for an item's id, and it is an error when it is not there.
  void LocateItem(const std::string& id, OnFound then, const Ended& ended);

  Link& m_Link;
};

}  // namespace mpdplayer
