#include "players/mpd/CoverArt.h"

#include "players/mpd/Complaint.h"
#include "players/mpd/SessionLine.h"

#include <charconv>
#include <functional>
#include <utility>

namespace mpdplayer {

namespace {

constexpr std::uint64_t s_LargestFile = std::uint64_t{32} << 20U;
constexpr int s_MostLosses = 3;

}  // namespace

void CoverArt::Follow(const std::string& uri) {
  if (!std::exchange(m_Stale, false) && m_Uri == uri) return;
  m_Uri = uri;
  ++m_Fetch;
  m_Embedded = true;
  m_Bytes.clear();
  m_Fault.clear();
  m_Fetching = !uri.empty() && uri.find('\0') == std::string::npos &&
               (uri != m_Trouble || m_Losses < s_MostLosses);
  if (m_Fetching) {
    Ask();
  } else {
    Tell();
  }
}

void CoverArt::Forget() {
  m_Stale = true;
  m_Told.reset();
}

void CoverArt::OnDown() {
  if (std::exchange(m_Fetching, false)) {
    m_Losses = m_Uri == m_Trouble ? m_Losses + 1 : 1;
    m_Trouble = m_Uri;
  }
  m_Bytes = std::string();
  Forget();
}

void CoverArt::Ask() {
  m_PieceSize = 0;
  const auto current = [this, fetch = m_Fetch] { return fetch == m_Fetch; };
  m_Link.Ask({(m_Embedded ? "readpicture " : "albumart ") + Argument(m_Uri) + ' ' +
                  std::to_string(m_Bytes.size()),
              [this, current](std::string_view name, std::string_view value) {
                if (current()) OnPair(name, value);
              },
              [this, current](const std::string& refusal) {
                if (current()) OnAnswer(refusal);
              }});
}

void CoverArt::OnPair(std::string_view name, std::string_view value) {
  if (name == "binary") {
    m_PieceSize = value.size();
    m_Bytes += value;
  } else if (name == "size") {
    const auto [end, fault] = std::from_chars(value.data(), value.data() + value.size(), m_Size);
    if (fault != std::errc() || end != value.data() + value.size() || m_Size > s_LargestFile) {
      m_Fault = "MPD says that it has " + Quoted(value) + " bytes";
    }
  }
}

void CoverArt::OnAnswer(const std::string& refusal) {
  if (m_Fault.empty() && refusal.empty() && m_PieceSize > 0 && m_Bytes.size() < m_Size)
    return Ask();
  if (m_Fault.empty() && !m_Bytes.empty() && m_Bytes.size() != m_Size) {
    m_Fault =
        "it has " + std::to_string(m_Bytes.size()) + " bytes in place of " + std::to_string(m_Size);
  }
  if (m_Fault.empty() && m_Bytes.empty() && m_Embedded) {
    m_Embedded = false;
    return Ask();
  }
  m_Fetching = false;
  if (m_Uri == m_Trouble) m_Trouble.clear();
  Tell();
  m_Bytes = std::string();
}

// No message says that a song has no picture: an empty path stands for that.
void CoverArt::Tell() {
  static const std::size_t none = std::hash<std::string>()({});
  std::size_t hash = std::hash<std::string>()(m_Bytes);
  std::string line;
  try {
    if (!m_Fault.empty()) throw PictureError(m_Fault);
    if (hash != none && m_Told != hash) line = Line();
  } catch (const PictureError& error) {
    Complain("the picture of " + Quoted(m_Uri) + " is left out: " + error.what());
    hash = none;
  }
  if (m_Told == hash) return;
  m_Told = hash;
  if (hash == none) {
    line =
        NotifyLine("COVERART_PATH_CHANGED", {{"image_path", ""}, {"width", "0"}, {"height", "0"}});
  }
  m_Output.Say(line);
}

std::string CoverArt::Line() const {
  const Picture picture = MakePicture(m_Bytes, m_Options.format, m_Options.longestSide);
  Params params = {{"cover_art", EncodeBase64(picture.bytes)},
                   {"width", std::to_string(picture.width)},
                   {"height", std::to_string(picture.height)}};
  switch (m_Options.format) {
    case ArtFormat::Jpeg:
      params.emplace_back("format", "JPEG");
      params.emplace_back("size", std::to_string(picture.bytes.size()));
      break;
    case ArtFormat::Rgb565:
      params.emplace_back("format", "RGB565");
      break;
    case ArtFormat::Rgb888:
      params.emplace_back("format", "RGB888");
      break;
  }
  return NotifyLine("NEW_COVERART", params);
}

}  // namespace mpdplayer
