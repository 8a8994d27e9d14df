#include "session/NearestWord.h"

#include <strings.h>

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace session {

namespace {

constexpr std::size_t s_MostEdits = 2;

// Levenshtein's distance, by the row.
std::size_t Edits(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char letter : from) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (letter == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

bool DifferInCaseAlone(std::string_view one, std::string_view two) {
  return one.size() == two.size() && strncasecmp(one.data(), two.data(), one.size()) == 0;
}

}  // namespace

std::string NearestWord(std::string_view written, const std::vector<std::string>& words) {
  std::string nearest;
  std::size_t least = s_MostEdits + 1;
  for (const std::string& word : words) {
    if (DifferInCaseAlone(written, word)) return word;
    const std::size_t longer = std::max(written.size(), word.size());
    // A short word would be near to almost everything.
    if (longer - std::min(written.size(), word.size()) > s_MostEdits || longer < 4) continue;
    const std::size_t edits = Edits(written, word);
    if (edits < least) {
      least = edits;
      nearest = word;
    }
  }
  return nearest;
}

std::string DidYouMean(std::string_view written, const std::vector<std::string>& words) {
  const std::string nearest = NearestWord(written, words);
  return nearest.empty() ? "" : " (did you mean \"" + nearest + "\"?)";
}

}  // namespace session
