#pragma once

#include <string>
#include <string_view>

namespace mpdplayer {

// Writes "mpd-player: ", the text and a line's end to standard error.
void Complain(const std::string& text);

// Text from outside for a complaint: in quotes, all but printable ASCII escaped, cut when long.
std::string Quoted(std::string_view text);

}  // namespace mpdplayer
