#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace mpdplayer {

// The part of a list that was asked for.
struct Window {
  std::size_t first = 0;
  std::size_t count = 100;
};

// An item of a menu or a list, as it is told.
struct ItemTexts {
  std::string id;
  std::string type;
  std::string text;
};

// What lies below an id, in MPD's words.
class Shelf {
 public:
  // Throws std::invalid_argument when nothing lies below such an id.
  explicit Shelf(const std::string& id);

  const std::string& Title() const { return m_Title; }

  // The tag whose values are items, too, and what the ids of such items start with.
  const std::string& Tag() const { return m_Tag; }
  const std::string& ItemKind() const { return m_ItemKind; }

  // The artist that all here share, so that items need not name it.
  const std::string& Artist() const { return m_Artist; }

  // The playlist whose entries these are, if they are.
  const std::string& Playlist() const { return m_Playlist; }

  // Items that come before those that MPD lists, when there are any.
  const std::vector<ItemTexts>& Head() const { return m_Head; }

  // The commands that list the window's part. Where Windowed, the answer begins with the number of
  // all items, as "songs" or "playlistlength", and goes on with those from Skipped on.
  std::string List(Window window) const;
  bool Windowed() const { return !m_Total.empty(); }
  std::size_t Skipped(Window window) const;

  // The command that puts all songs here into the queue, at its end if `place` is empty. Throws
  // std::invalid_argument where there are none.
  std::string Add(const std::string& place) const;

 private:
  void SetTop(const std::string& id);
  void SetBelow(const std::string& kind, const std::string& value);
  void SetSongs(const std::string& filter);
  void SetAllBelow(const std::string& id);
  void SetAlbum(const std::string& value);
  void SetSearch(const std::string& text);
  void SetFolder(const std::string& path);
  void SetPlaylist(const std::string& name);
  void SetQueue();
  void SetRecent();

  struct Top;
  struct Row;

  std::string m_Title;
  std::string m_Tag;
  std::string m_ItemKind;
  std::string m_Artist;
  std::string m_Playlist;
  std::vector<ItemTexts> m_Head;
  std::string m_Total;  // the command that counts what m_List lists
  std::string m_List;
  std::string m_WindowPrefix;  // what stands between m_List and a window
  std::string m_Add;
  std::string m_PlacePrefix;  // what stands between m_Add and a place
};

}  // namespace mpdplayer
