#include "players/mpd/Queue.h"

#include "players/mpd/Shelf.h"

#include <charconv>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace mpdplayer {

namespace {

std::size_t Number(std::string_view text) {
  std::size_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// The songs of an answer, one after the other.
struct Songs {
  std::vector<Song> all;
  void Take(std::string_view name, std::string_view value) {
    if (name == "file") all.emplace_back();
    if (!all.empty()) all.back().Take(name, value);
  }
};

// The song at one place of an answer.
struct NthSong {
  std::size_t number = 0;
  std::size_t count = 0;
  Song song;
  void Take(std::string_view name, std::string_view value) {
    if (name == "file") ++count;
    if (count == number + 1) song.Take(name, value);
  }
};

// The one at the item's own place, or else the first of its kind.
Song Nearest(const std::vector<Song>& songs, const QueueItem& item) {
  Song nearest;
  for (const Song& song : songs) {
    if (song.range != item.range) continue;
    if (song.position == item.position) return song;
    if (nearest.id.empty()) nearest = song;
  }
  return nearest;
}

Ended Then(Ended ended, std::function<void()> next) {
  return [ended = std::move(ended), next = std::move(next)](const Outcome& outcome) {
    if (!outcome.Done()) return ended(outcome);
    next();
  };
}

Outcome Refusal(const char* why) { return {Outcome::Kind::Refused, why}; }

}  // namespace

void Queue::Play(const std::string& id, const Ended& ended) {
  const auto [kind, value] = SplitId(id);
  if (kind == "track:") return PlayTrack(id, ended);
  if (kind == "queue:") {
    const QueueItem item = ReadQueueId(value);
    return PlayHere(item, CommandFor("song:" + item.uri), ended);
  }
  if (kind != "song:") return Add(id, Where::Now, ended);
  PlayHere({{}, {}, value}, CommandFor(id), ended);
}

void Queue::PlayHere(const QueueItem& item, AddCommand otherwise, const Ended& ended) {
  if (!item.range.empty()) otherwise = nullptr;
  Locate(
      item,
      [this, otherwise = std::move(otherwise), ended](const Song& song) {
        if (!song.id.empty()) return Ask("playid " + Argument(song.id), ended);
        if (!otherwise) return ended(Refusal("it is no longer in the queue"));
        Insert(otherwise, Where::End, true, ended);
      },
      ended);
}

// The queue does not say from which playlist its songs came, but which parts of which files.
void Queue::PlayTrack(const std::string& id, const Ended& ended) {
  const Place place = SplitPlace(SplitId(id).second);
  const auto track = std::make_shared<NthSong>(NthSong{Number(place.number), 0, {}});
  m_Link.AskNext(
      {"listplaylistinfo " + Argument(place.rest),
       [track](std::string_view name, std::string_view value) { track->Take(name, value); },
       Then(ended, [this, track, id, ended] {
         if (track->song.uri.empty()) return ended(Refusal("the playlist has changed"));
         Locate(
             {{}, track->song.range, track->song.uri},
             [this, id, ended](const Song& song) {
               if (!song.id.empty()) return Ask("playid " + Argument(song.id), ended);
               Insert(CommandFor(id), Where::End, true, ended);
             },
             ended);
       })});
}

void Queue::Add(const std::string& id, Where where, const Ended& ended) {
  if (SplitId(id).first == "queue:") return MoveItem(id, where, ended);
  Insert(CommandFor(id), where, where == Where::Now, ended);
}

Queue::AddCommand Queue::CommandFor(const std::string& id) {
  const auto [kind, value] = SplitId(id);
  const auto with = [](const std::string& command) {
    return [command](const std::string& place) {
      return place.empty() ? command : command + ' ' + place;
    };
  };
  if (kind == "song:") return with("addid " + Argument(value));
  if (kind != "track:") {
    return [shelf = Shelf(id)](const std::string& place) { return shelf.Add(place); };
  }
  const Place place = SplitPlace(value);
  return with("load " + Argument(place.rest) + ' ' + place.number + ':' +
              std::to_string(Number(place.number) + 1));
}

void Queue::Insert(AddCommand command, Where where, bool play, const Ended& ended) {
  command({});  // says so at once when there is no such command
  AskExtent(
      [this, command = std::move(command), where, play, ended](Extent extent) {
        const bool end = where == Where::End || extent.current >= extent.length;
        InsertAt(command, extent, end ? extent.length : extent.current + 1, play, ended);
      },
      ended);
}

void Queue::InsertAt(const AddCommand& command, Extent extent, std::size_t place, bool play,
                     const Ended& ended) {
  const auto length = std::make_shared<std::size_t>(0);
  const std::string number = std::to_string(place);
  m_Link.AskNext({CommandList(command(place < extent.length ? number : "") + "\nstatus"),
                  [length](std::string_view name, std::string_view value) {
                    if (name == "playlistlength") *length = Number(value);
                  },
                  Then(ended, [this, length, before = extent.length, number, play, ended] {
                    if (*length <= before) return ended(Refusal("there are no songs in it"));
                    if (!play) return ended({});
                    Ask("play " + number, ended);
                  })});
}

void Queue::Remove(const std::string& id, const Ended& ended) {
  LocateItem(
      id, [this, ended](const Song& song) { Ask("deleteid " + Argument(song.id), ended); }, ended);
}

void Queue::Move(const std::string& id, std::size_t to, const Ended& ended) {
  LocateItem(
      id,
      [this, to, ended](const Song& song) {
        Ask("moveid " + Argument(song.id) + ' ' + std::to_string(to), ended);
      },
      ended);
}

void Queue::MoveItem(const std::string& id, Where where, const Ended& ended) {
  if (where == Where::Now) return Play(id, ended);
  LocateItem(
      id,
      [this, where, ended](const Song& song) {
        AskExtent(
            [this, song, where, ended](Extent extent) {
              const std::size_t from = Number(song.position);
              const std::size_t next = from <= extent.current ? extent.current : extent.current + 1;
              const bool end = where == Where::End || extent.current >= extent.length;
              const std::size_t to = end ? extent.length - 1 : next;
              Ask("moveid " + Argument(song.id) + ' ' + std::to_string(to), ended);
            },
            ended);
      },
      ended);
}

void Queue::Ask(const std::string& command, const Ended& ended) {
  m_Link.AskNext({command, {}, ended});
}

void Queue::AskExtent(std::function<void(Extent extent)> then, const Ended& ended) {
  const auto extent = std::make_shared<std::pair<std::size_t, std::string>>();
  m_Link.AskNext({"status",
                  [extent](std::string_view name, std::string_view value) {
                    if (name == "playlistlength") extent->first = Number(value);
                    if (name == "song") extent->second = value;
                  },
                  Then(ended, [extent, then = std::move(then)] {
                    const auto& [length, song] = *extent;
                    then({length, song.empty() ? length : Number(song)});
                  })});
}

void Queue::Locate(const QueueItem& item, OnFound then, const Ended& ended) {
  const auto songs = std::make_shared<Songs>();
  m_Link.AskNext(
      {"playlistfind file " + Argument(item.uri),
       [songs](std::string_view name, std::string_view value) { songs->Take(name, value); },
       Then(ended, [songs, item, then = std::move(then)] { then(Nearest(songs->all, item)); })});
}

void Queue::LocateItem(const std::string& id, OnFound then, const Ended& ended) {
  const auto [kind, value] = SplitId(id);
  if (kind != "queue:") throw std::invalid_argument("ID must be an item of the queue");
  Locate(
      ReadQueueId(value),
      [then = std::move(then), ended](const Song& song) {
        if (song.id.empty()) return ended(Refusal("it is no longer in the queue"));
        then(song);
      },
      ended);
}

}  // namespace mpdplayer
