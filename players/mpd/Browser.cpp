#include "players/mpd/Browser.h"

#include "players/mpd/SessionLine.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace mpdplayer {

namespace {

// MPD ends connections whose answer fills its memory; more matches than this are not counted.
constexpr char s_SearchWindow[] = " window 0:10000";

constexpr char s_NoSuchId[] = "ID names nothing that is here";

// A kind that ends in a colon is followed by the command's argument.
struct Row {
  const char* kind;
  const char* title;
  const char* command;
  const char* tag;
};
constexpr Row s_Rows[] = {
    {"artists", "Artists", "list artist", "Artist"},
    {"albums", "Albums", "list album", "Album"},
    {"folders", "Folders", "lsinfo", ""},
    {"playlists", "Playlists", "listplaylists", ""},
    {"artist:", "", "list album artist ", "Album"},
    {"album:", "", "find album ", ""},
    {"folder:", "", "lsinfo ", ""},
    {"playlist:", "", "listplaylistinfo ", ""},
};

// The kind with its colon, and what follows it.
std::pair<std::string, std::string> Split(const std::string& id) {
  const std::size_t end = std::min(id.find(':'), id.size() - 1) + 1;
  return {id.substr(0, end), id.substr(end)};
}

// An artist within an id, where a slash follows.
std::string Escaped(const std::string& artist) {
  std::string escaped;
  for (const char c : artist) {
    if (c == '%') {
      escaped += "%25";
    } else if (c == '/') {
      escaped += "%2F";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string Unescaped(std::string artist) {
  for (std::size_t at = 0; (at = artist.find('%', at)) != std::string::npos; ++at) {
    artist.replace(at, 3, artist.compare(at, 3, "%2F") == 0 ? "/" : "%");
  }
  return artist;
}

}  // namespace

void Browser::Menu() {
  static const std::vector<ItemTexts> items = {
      {"artists", "list", "Artists"}, {"albums", "list", "Albums"},
      {"folders", "list", "Folders"}, {"playlists", "list", "Playlists"},
      {"queue", "list", "Queue"},     {"search", "search", "Search"},
  };
  m_Output.Say(NotifyLine(
      "NEW_MENU", {{"title", "Music player"}, {"num_items", std::to_string(items.size())}}));
  TellItems(m_Output, "ADD_MENU_ITEM", items);
}

void Browser::Browse(const std::string& id, Window window, Refused refused) {
  if (id == "queue") return BrowseQueue(window, std::move(refused));
  const auto [kind, value] = Split(id);
  if (kind == "album-of:") {
    const std::size_t slash = value.find('/');
    if (slash == std::string::npos) throw std::invalid_argument(s_NoSuchId);
    const std::string album = value.substr(slash + 1);
    const std::string command =
        "find artist " + Argument(Unescaped(value.substr(0, slash))) + " album " + Argument(album);
    return List(command, {Named(album), "", "", {}}, window, std::move(refused));
  }
  for (const Row& row : s_Rows) {
    if (kind != row.kind) continue;
    if (kind.back() != ':') {
      return List(row.command, {row.title, row.tag, kind.substr(0, kind.size() - 1) + ':', {}},
                  window, std::move(refused));
    }
    const std::string title = kind == "folder:" ? LastName(value) : Named(value);
    return List(row.command + Argument(value),
                {title, row.tag, "album-of:" + Escaped(value) + '/', {}}, window,
                std::move(refused));
  }
  throw std::invalid_argument(s_NoSuchId);
}

void Browser::Search(const std::string& text, Window window, Refused refused) {
  List("search any " + Argument(text) + s_SearchWindow, {text, "", "", {}}, window,
       std::move(refused));
}

void Browser::BrowseQueue(Window window, Refused refused) {
  const std::size_t first = std::min(window.first, m_QueueLength);
  const std::string range = std::to_string(first) + ':' + std::to_string(first + window.count);
  List("playlistinfo " + range, {"Queue", "", "", m_QueueLength}, window, std::move(refused));
}

void Browser::List(const std::string& command, Listing::Kind kind, Window window, Refused refused) {
  const auto listing = std::make_shared<Listing>(std::move(kind), window);
  m_Link.Ask(
      {command,
       [listing](std::string_view name, std::string_view value) { listing->Take(name, value); },
       [this, listing, refused = std::move(refused)](const std::string& refusal) {
         if (!refusal.empty()) return refused(refusal);
         listing->Tell(m_Output);
       }});
}

void Browser::Play(const std::string& id, const Refused& refused) {
  const auto [kind, value] = Split(id);
  std::string position;
  std::string uri = value;
  if (kind == "queue:") std::tie(position, uri) = Split(value);
  if ((kind != "song:" && kind != "queue:") || uri.empty()) {
    throw std::invalid_argument("ID must be a song's");
  }
  struct Found {
    std::string id;
    std::string position;
    bool exact = false;
  };
  const auto found = std::make_shared<Found>();
  m_Link.Ask({"playlistfind file " + Argument(uri),
              [found, position](std::string_view name, std::string_view text) {
                if (name == "Pos") found->position = std::string(text) + ':';
                if (name != "Id" || found->exact) return;
                found->exact = found->position == position;
                if (found->exact || found->id.empty()) found->id = text;
              },
              [this, found, uri, refused](const std::string& refusal) {
                if (!refusal.empty()) return refused(refusal);
                if (found->id.empty()) return Add(uri, refused);
                PlayId(found->id, refused);
              }});
}

void Browser::Add(const std::string& uri, const Refused& refused) {
  const auto added = std::make_shared<std::string>();
  m_Link.Ask({"addid " + Argument(uri),
              [added](std::string_view name, std::string_view value) {
                if (name == "Id") *added = value;
              },
              [this, added, refused](const std::string& refusal) {
                if (!refusal.empty()) return refused(refusal);
                PlayId(*added, refused);
              }});
}

void Browser::PlayId(const std::string& id, const Refused& refused) {
  m_Link.Ask({"playid " + Argument(id), {}, [refused](const std::string& refusal) {
                if (!refusal.empty()) refused(refusal);
              }});
}

}  // namespace mpdplayer
