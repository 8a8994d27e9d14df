#pragma once

#include <string>
#include <vector>

namespace mpdplayer {

// Expressions that say which songs of MPD's database are meant.
std::string Is(const std::string& tag, const std::string& value);
std::string AllOf(const std::vector<std::string>& expressions);

// The songs below an id of this kind, which ends in a colon. Throws std::invalid_argument when it
// is none of a tag's.
std::string FilterOf(const std::string& kind, const std::string& value);

// The songs that have all words of the text, in any order, each in any tag, or in the name of a
// file without a title. For `search`, which ignores case.
std::string FilterOfWords(const std::string& text);

}  // namespace mpdplayer
