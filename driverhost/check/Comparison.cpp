#include "driverhost/check/Comparison.h"

#include "driverhost/text/Documents.h"
#include "session/Legible.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

namespace driverhost {

namespace {

using Json = nlohmann::json;

constexpr std::size_t s_LongestRecord = 2000;
constexpr std::size_t s_LongestText = 60;
// With more pairs of records than this, what follows the first difference is not matched.
constexpr std::size_t s_MostPairs = 1000000;

// Says in words how two values differ; empty when they do not.
std::string ValueDifference(const std::string& key, const Json& expected, const Json& came) {
  if (expected == came) return {};
  if (key == "xml" && expected.is_string() && came.is_string()) {
    return FirstDifference(expected.get_ref<const std::string&>(),
                           came.get_ref<const std::string&>());
  }
  const auto shown = [](const Json& value) {
    return session::Legible(value.dump(), s_LongestText);
  };
  return "in " + session::Quoted(key) + ": expected " + shown(expected) + ", came " + shown(came);
}

std::string RecordDifference(const Json& expected, const Json& came) {
  for (const auto& [key, value] : expected.items()) {
    if (!came.contains(key)) return session::Quoted(key) + " did not come";
    std::string difference = ValueDifference(key, value, came.at(key));
    if (!difference.empty()) return difference;
  }
  for (const auto& [key, value] : came.items()) {
    if (!expected.contains(key)) return session::Quoted(key) + " was not expected";
  }
  return {};
}

struct RecordText {
  std::string_view text;
  Json json;

  bool Equals(const RecordText& other) const {
    return text == other.text || RecordDifference(json, other.json).empty();
  }
};

template <class Texts>
std::vector<RecordText> Parsed(const Texts& texts) {
  std::vector<RecordText> records;
  records.reserve(texts.size());
  for (const std::string_view text : texts) records.push_back({text, Json::parse(text)});
  return records;
}

// What is left over of two lists when their longest common sequence is taken out. Gaps are numbered
// by the place in that sequence.
struct Leftover {
  std::size_t gap;
  const RecordText* record;
};
struct Leftovers {
  std::vector<Leftover> expected;
  std::vector<Leftover> came;
  std::vector<const RecordText*> common;
};

class Matcher {
 public:
  Matcher(const std::vector<RecordText>& expected, const std::vector<RecordText>& came)
      : m_Expected(expected), m_Came(came) {}

  Leftovers Match() {
    const std::size_t rows = m_Expected.size();
    const std::size_t columns = m_Came.size();
    if (rows * columns <= s_MostPairs) Measure();
    Leftovers left;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < rows || j < columns) {
      const std::size_t gap = left.common.size();
      if (i < rows && j < columns && Same(i, j)) {
        left.common.push_back(&m_Expected[i]);
        ++i, ++j;
      } else if (j == columns || (i < rows && Length(i + 1, j) >= Length(i, j + 1))) {
        left.expected.push_back({gap, &m_Expected[i++]});
      } else {
        left.came.push_back({gap, &m_Came[j++]});
      }
    }
    return left;
  }

 private:
  bool Same(std::size_t i, std::size_t j) const { return m_Expected[i].Equals(m_Came[j]); }

  // The length of the longest common sequence of the two lists' tails; 0 when it was not measured.
  std::size_t Length(std::size_t i, std::size_t j) const {
    return m_Lengths.empty() ? 0 : m_Lengths[i * (m_Came.size() + 1) + j];
  }

  void Measure() {
    m_Lengths.resize((m_Expected.size() + 1) * (m_Came.size() + 1));
    for (std::size_t i = m_Expected.size(); i-- > 0;) {
      for (std::size_t j = m_Came.size(); j-- > 0;) {
        m_Lengths[i * (m_Came.size() + 1) + j] =
            Same(i, j) ? Length(i + 1, j + 1) + 1 : std::max(Length(i + 1, j), Length(i, j + 1));
      }
    }
  }

  const std::vector<RecordText>& m_Expected;
  const std::vector<RecordText>& m_Came;
  std::vector<std::size_t> m_Lengths;
};

class Report {
 public:
  explicit Report(bool coloured) : m_Coloured(coloured) {}

  std::string Of(Leftovers left) {
    for (const Leftover& missing : left.expected) {
      const auto moved = Find(
          left.came, [&](const Leftover& other) { return other.record->Equals(*missing.record); });
      const auto changed = Find(left.came, [&](const Leftover& other) {
        return other.gap == missing.gap && IsSameKind(*other.record, *missing.record);
      });
      Line('-', missing);
      if (moved) {
        Words("came in another place");
        left.came.erase(*moved);
      } else if (changed) {
        Line('+', **changed);
        Words(RecordDifference(missing.record->json, (*changed)->record->json));
        left.came.erase(*changed);
      } else {
        Words("did not come");
      }
    }
    for (const Leftover& extra : left.came) {
      const bool again =
          std::any_of(left.common.begin(), left.common.end(),
                      [&](const auto* other) { return other->Equals(*extra.record); });
      Line('+', extra);
      Words(again ? "came once too often" : "was not expected");
    }
    return m_Text;
  }

 private:
  template <class Is>
  static std::optional<std::vector<Leftover>::iterator> Find(std::vector<Leftover>& list, Is is) {
    const auto found = std::find_if(list.begin(), list.end(), is);
    if (found == list.end()) return std::nullopt;
    return found;
  }

  static bool IsSameKind(const RecordText& one, const RecordText& two) {
    return one.json.value("to", Json()) == two.json.value("to", Json());
  }

  void Line(char sign, const Leftover& leftover) {
    const char* colour = sign == '-' ? "\033[31m" : "\033[32m";
    if (m_Coloured) m_Text += colour;
    m_Text +=
        std::string("  ") + sign + ' ' + session::Legible(leftover.record->text, s_LongestRecord);
    m_Text += m_Coloured ? "\033[0m\n" : "\n";
  }

  void Words(const std::string& words) { m_Text += "    " + words + '\n'; }

  const bool m_Coloured;
  std::string m_Text;
};

}  // namespace

std::string Differences(const std::vector<std::string_view>& expected,
                        const std::vector<std::string>& came, bool coloured) {
  if (std::equal(expected.begin(), expected.end(), came.begin(), came.end())) return {};
  const std::vector<RecordText> one = Parsed(expected);
  const std::vector<RecordText> two = Parsed(came);
  return Report(coloured).Of(Matcher(one, two).Match());
}

}  // namespace driverhost
