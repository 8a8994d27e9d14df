#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace session {

// The first of the words that are nearest to what somebody wrote: at most two letters added, left
// out or replaced, or a difference in letter case alone. Empty when none is that near.
std::string NearestWord(std::string_view written, const std::vector<std::string>& words);

// ' (did you mean "WORD"?)', or nothing.
std::string DidYouMean(std::string_view written, const std::vector<std::string>& words);

}  // namespace session
