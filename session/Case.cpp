#include "session/Case.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace session {

namespace {

using Json = nlohmann::json;

// A record, its parameters, one of them and the bytes of its value; what is nested deeper would be
// compared and written by recursion.
constexpr int s_Deepest = 8;

}  // namespace

LineKind KindOf(const LineSplitter::Line& line) {
  std::string_view text = line.text;
  const auto skipBlanks = [&text] {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  };
  skipBlanks();
  if (line.tooLong) return LineKind::Step;  // a wrong one
  if (text.empty() || text[0] == '#') return LineKind::Comment;
  text.remove_prefix(1);
  skipBlanks();
  return text.starts_with("\"to\"") ? LineKind::Record : LineKind::Step;
}

std::string RecordFault(std::string_view line) {
  bool deep = false;
  const auto keep = [&deep](int depth, Json::parse_event_t, const Json&) {
    deep = deep || depth > s_Deepest;
    return !deep;
  };
  const Json json = Json::parse(line, keep, false);
  if (deep) return "nested too deeply";
  if (!json.is_object()) return "a record is one JSON object";
  if (json.contains("step")) return "the records of a case have no \"step\"";
  return {};
}

}  // namespace session
