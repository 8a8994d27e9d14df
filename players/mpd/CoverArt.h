#pragma once

#include "players/mpd/Link.h"
#include "players/mpd/Output.h"
#include "players/mpd/Picture.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mpdplayer {

struct ArtOptions {
  ArtFormat format = ArtFormat::Jpeg;
  int longestSide = 600;
};

// Fetches the current song's picture, embedded or from its folder, and tells the driver.
class CoverArt {
 public:
  CoverArt(Link& link, Output& output, ArtOptions options)
      : m_Link(link), m_Output(output), m_Options(options) {}

  // The current song, empty when there is none. The picture is fetched when the song is a new one.
  void Follow(const std::string& uri);

  // At the next Follow the picture is fetched anew, and sent if it has changed.
  void Recheck() { m_Stale = true; }

  // At the next Follow the picture is sent, changed or not.
  void Forget();

  // The connection was lost. A picture whose fetching lost it three times is not asked for again.
  void OnDown();

 private:
  void Ask();
  void OnPair(std::string_view name, std::string_view value);
  void OnAnswer(const std::string& refusal);
  void Tell();
  std::string Line() const;

  Link& m_Link;
  Output& m_Output;
  ArtOptions m_Options;

  std::string m_Uri;
  bool m_Stale = true;
  unsigned m_Fetch = 0;  // counts, so that answers for another song are recognised
  bool m_Fetching = false;
  bool m_Embedded = true;
  std::string m_Bytes;
  std::uint64_t m_Size = 0;
  std::size_t m_PieceSize = 0;
  std::string m_Fault;

  std::optional<std::size_t> m_Told;  // the hash of the file that was sent last
  std::string m_Trouble;              // the song whose picture lost the connection
  int m_Losses = 0;
};

}  // namespace mpdplayer
