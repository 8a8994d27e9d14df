#pragma once

#include "players/mpd/Link.h"
#include "players/mpd/Output.h"
#include "players/mpd/Picture.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

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
  void Recheck() { m_State = Idle(); }

  // At the next Follow the picture is sent, changed or not.
  void Forget();

  // The connection was lost: there is no picture until the next Follow. One whose fetching lost it
  // three times is not asked for again.
  void OnDown();

 private:
  // A picture that is on its way. Answers for one that is no longer wanted find it gone.
  struct Fetch {
    std::string uri;
    std::size_t source = 0;
    std::string bytes;
    std::uint64_t size = 0;
    std::size_t pieceSize = 0;
    std::string fault;
    std::optional<Picture> best;  // of the sources that have answered
  };

  struct Idle {};
  struct Fetching {
    std::shared_ptr<Fetch> fetch;
  };
  struct Shown {
    std::string uri;
  };

  void Ask(const std::shared_ptr<Fetch>& fetch);
  static void Take(Fetch& fetch, std::string_view name, std::string_view value);
  void OnPiece(const std::shared_ptr<Fetch>& fetch);
  void OnSource(const std::shared_ptr<Fetch>& fetch);
  std::optional<Picture> Decode(Fetch& fetch) const;
  void Show(const std::string& uri, const std::optional<Picture>& picture);
  std::string Line(const Picture& picture) const;

  Link& m_Link;
  Output& m_Output;
  ArtOptions m_Options;

  std::variant<Idle, Fetching, Shown> m_State;
  std::optional<std::size_t> m_Told;  // the hash of the picture that was sent last
  std::string m_Trouble;              // the song whose picture lost the connection
  int m_Losses = 0;
};

}  // namespace mpdplayer
