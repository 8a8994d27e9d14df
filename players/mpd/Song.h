#pragma once

#include <string>
#include <string_view>

namespace mpdplayer {

// What an answer says about a song, or about an output, which a list holds as it holds songs. A tag
// that is there several times is one text, with "; " in between.
struct Song {
  std::string uri;
  std::string title;
  std::string artist;
  std::string album;
  std::string name;
  std::string position;
  std::string id;
  std::string range;  // the part of the file, when it is not the whole
  std::string output;
  std::string enabled;

  void Take(std::string_view tag, std::string_view value);

  // The title, or else what can stand for it.
  std::string Text() const;
};

// The last name of a path or an address, the whole of it when it ends in a slash.
std::string LastName(const std::string& path);

// What is shown for a tag's value, which may be empty.
std::string Named(const std::string& value);

}  // namespace mpdplayer
