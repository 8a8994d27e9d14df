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
constexpr const char* s_Sources[] = {"readpicture ", "albumart "};

}  // namespace

void CoverArt::Follow(const std::string& uri) {
  if (const auto* fetching = std::get_if<Fetching>(&m_State);
      fetching && fetching->fetch->uri == uri)
    return;
  if (const auto* shown = std::get_if<Shown>(&m_State); shown && shown->uri == uri) return;
  if (uri.empty() || !IsArgument(uri) || (uri == m_Trouble && m_Losses >= s_MostLosses)) {
    return Show(uri, {});
  }
  auto fetch = std::make_shared<Fetch>();
  fetch->uri = uri;
  m_State = Fetching{fetch};
  Ask(fetch);
}

void CoverArt::Forget() {
  if (std::holds_alternative<Shown>(m_State)) m_State = Idle();
  m_Told.reset();
}

void CoverArt::OnDown() {
  if (const auto* fetching = std::get_if<Fetching>(&m_State)) {
    const std::string& uri = fetching->fetch->uri;
    m_Losses = uri == m_Trouble ? m_Losses + 1 : 1;
    m_Trouble = uri;
  }
  if (m_Told) Show({}, {});
  m_State = Idle();
  m_Told.reset();
}

void CoverArt::Ask(const std::shared_ptr<Fetch>& fetch) {
  fetch->pieceSize = 0;
  const std::weak_ptr<Fetch> wanted = fetch;
  m_Link.Ask(
      {s_Sources[fetch->source] + Argument(fetch->uri) + ' ' + std::to_string(fetch->bytes.size()),
       [wanted](std::string_view name, std::string_view value) {
         if (const auto current = wanted.lock()) Take(*current, name, value);
       },
       [this, wanted](const Outcome& outcome) {
         const auto current = wanted.lock();
         if (current && outcome.kind != Outcome::Kind::Lost) OnPiece(current);
       }});
}

void CoverArt::Take(Fetch& fetch, std::string_view name, std::string_view value) {
  if (name == "binary") {
    fetch.pieceSize = value.size();
    fetch.bytes += value;
  } else if (name == "size") {
    const char* const end = value.data() + value.size();
    const auto [stop, fault] = std::from_chars(value.data(), end, fetch.size);
    if (fault != std::errc() || stop != end || fetch.size > s_LargestFile) {
      fetch.fault = "MPD says that it has " + Quoted(value) + " bytes";
    }
  }
}

void CoverArt::OnPiece(const std::shared_ptr<Fetch>& fetch) {
  const std::size_t held = fetch->bytes.size();
  if (fetch->fault.empty() && fetch->pieceSize > 0 && held < fetch->size) return Ask(fetch);
  if (fetch->fault.empty() && held > 0 && held != fetch->size) {
    fetch->fault =
        "it has " + std::to_string(held) + " bytes in place of " + std::to_string(fetch->size);
  }
  OnSource(fetch);
}

// A song may bring an icon, or what cannot be shown, and its folder the picture that people know.
void CoverArt::OnSource(const std::shared_ptr<Fetch>& fetch) {
  std::optional<Picture> picture = Decode(*fetch);
  const bool enough = picture && !picture->icon;
  if (picture && (enough || !fetch->best)) fetch->best = std::move(picture);
  if (enough || ++fetch->source == std::size(s_Sources)) {
    if (fetch->uri == m_Trouble) m_Trouble.clear();
    return Show(fetch->uri, fetch->best);
  }
  fetch->bytes.clear();
  fetch->fault.clear();
  Ask(fetch);
}

std::optional<Picture> CoverArt::Decode(Fetch& fetch) const {
  if (fetch.fault.empty() && fetch.bytes.empty()) return {};
  try {
    if (!fetch.fault.empty()) throw PictureError(fetch.fault);
    return MakePicture(fetch.bytes, m_Options.format, m_Options.longestSide);
  } catch (const PictureError& error) {
    Complain("a picture of " + Quoted(fetch.uri) + " is left out: " + error.what());
    return {};
  }
}

// No message says that a song has no picture: an empty path stands for that.
void CoverArt::Show(const std::string& uri, const std::optional<Picture>& picture) {
  const std::size_t hash = std::hash<std::string>()(picture ? picture->bytes : "");
  if (std::exchange(m_Told, hash) != hash) {
    m_Output.Say(picture ? Line(*picture)
                         : NotifyLine("COVERART_PATH_CHANGED",
                                      {{"image_path", ""}, {"width", "0"}, {"height", "0"}}));
  }
  m_State = Shown{uri};
}

std::string CoverArt::Line(const Picture& picture) const {
  static constexpr const char* formats[] = {"JPEG", "RGB565", "RGB888"};
  Params params = {{"cover_art", EncodeBase64(picture.bytes)},
                   {"width", std::to_string(picture.width)},
                   {"height", std::to_string(picture.height)},
                   {"format", formats[static_cast<int>(m_Options.format)]}};
  if (m_Options.format == ArtFormat::Jpeg) {
    params.emplace_back("size", std::to_string(picture.bytes.size()));
  }
  return NotifyLine("NEW_COVERART", params);
}

}  // namespace mpdplayer
