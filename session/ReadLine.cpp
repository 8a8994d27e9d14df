#include "session/ReadLine.h"

#include "session/Base64.h"
#include "session/Legible.h"
#include "session/NearestWord.h"
#include "session/Number.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace session {

namespace {

using Json = nlohmann::ordered_json;

// A line, its parameters and a text of theirs.
constexpr int s_DeepestObject = 2;
// Beginnings, ends, keys and values: the time that a line takes grows with the square of its keys.
constexpr std::size_t s_MostEvents = 40000;
[[noreturn]] void Fail(const std::string& what) { throw std::runtime_error(what); }

// Refuses a key that stands twice in its object, and what is nested deeper or holds more than any
// line needs.
class KeyGuard {
 public:
  bool operator()(int depth, Json::parse_event_t event, const Json& parsed) {
    using Event = Json::parse_event_t;
    const bool starts = event == Event::object_start || event == Event::array_start;
    if (++m_Events > s_MostEvents) Fail("more than 20000 keys");
    if (starts && depth > s_DeepestObject) Fail("nested too deeply");
    if (event == Event::object_start) m_Open.emplace_back();
    if (event == Event::object_end) m_Open.pop_back();
    if (event == Event::key) Enter(parsed.get_ref<const std::string&>());
    return true;
  }

 private:
  void Enter(const std::string& key) {
    if (!m_Open.back().insert(key).second) Fail("the key " + Quoted(key) + " stands twice");
  }

  std::size_t m_Events = 0;
  std::vector<std::set<std::string>> m_Open;
};

Json Parse(std::string_view line) {
  // The parser would take a NUL for the end of its input.
  if (line.find('\0') != std::string_view::npos) Fail("not JSON: it holds a NUL byte");
  try {
    KeyGuard guard;
    return Json::parse(line.begin(), line.end(), std::ref(guard));
  } catch (const Json::exception& error) {
    // "[json.exception....] parse error at line 1, column 5: ..."; an overflow has no place.
    const std::string_view what = error.what();
    const std::size_t column = what.find("column ");
    const std::size_t start = column == std::string_view::npos ? what.find("] ") + 2 : column;
    Fail("not JSON: " + Legible(what.substr(start), 200));
  }
}

// The members of one line. Values are taken out of it.
class LineMembers {
 public:
  LineMembers(Json& json, const char* key, const ReadFile& readFile)
      : m_Json(json), m_Key(key), m_ReadFile(readFile) {}

  std::string Name() {
    Json& name = m_Json[m_Key];
    if (!name.is_string()) Fail(Quoted(m_Key) + " must be a string");
    return std::move(name.get_ref<std::string&>());
  }

  unsigned long Id() const { return Number(m_Json[m_Key], m_Key); }

  bool Has(const char* key) const { return m_Json.contains(key); }

  // The paths of the files whose text has been taken.
  std::map<std::string, std::string>& Files() { return m_Files; }

  // Empty when the line has none.
  std::string Text(const char* key) { return Has(key) ? Text(key, m_Json[key]) : std::string(); }

  std::optional<std::string> TextIfAny(const char* key) {
    if (!Has(key)) return std::nullopt;
    return Text(key);
  }

  Params TextParams() {
    Params params;
    for (auto& [name, value] : Members("params")) params.push_back({name, Text(name, value)});
    return params;
  }

  Params TypedParams() {
    Params params;
    for (auto& [name, value] : Members("params")) {
      const bool integer = value.is_number_integer();
      if (value.is_number_float()) Fail(Quoted(name) + " must be an integer of 64 bits or a text");
      params.push_back(
          {name, integer ? value.dump() : Text(name, value), integer ? "INTEGER" : "STRING"});
    }
    return params;
  }

  Params Capabilities() {
    Params capabilities;
    for (auto& [name, value] : Members("capabilities")) {
      capabilities.push_back(
          {name, value.is_boolean() ? (value.get<bool>() ? "True" : "False") : Text(name, value)});
    }
    return capabilities;
  }

  std::map<unsigned long, unsigned long> Outputs() {
    std::map<unsigned long, unsigned long> outputs;
    for (auto& [name, value] : Members(m_Key)) {
      const auto room = ReadNumber(name);
      if (!room) Fail(Quoted(name) + " must be the number of a room");
      if (!outputs.emplace(*room, Number(value, name)).second) {
        Fail("the room " + std::to_string(*room) + " stands twice");
      }
    }
    return outputs;
  }

  void RequireTrue() const {
    if (m_Json[m_Key] != true) Fail(Quoted(m_Key) + " must be true");
  }

 private:
  static unsigned long Number(const Json& value, const std::string& name) {
    const auto* number = value.get_ptr<const Json::number_unsigned_t*>();
    if (!number || *number > ULONG_MAX) {
      Fail(Quoted(name) + " must be an integer from 0 to " + std::to_string(ULONG_MAX));
    }
    return static_cast<unsigned long>(*number);
  }

  // Empty when the line has none.
  Json::object_t& Members(const char* key) {
    Json& members = Has(key) ? m_Json[key] : m_None;
    if (!members.is_object()) Fail(Quoted(key) + " must be an object");
    return members.get_ref<Json::object_t&>();
  }

  std::string Text(const std::string& name, Json& value) {
    if (value.is_string()) return std::move(value.get_ref<std::string&>());
    if (value.is_object() && value.size() == 1 && value.front().is_string()) {
      const auto& text = value.front().get_ref<const std::string&>();
      if (value.contains("bytes")) {
        auto bytes = DecodeBase64(text);
        if (!bytes) Fail(Quoted(name) + " holds broken base64");
        return *std::move(bytes);
      }
      if (value.contains("base64_of_file")) return FileText(name, text);
    }
    Fail(Quoted(name) + R"( must be a string, {"bytes": BASE64} or {"base64_of_file": PATH})");
  }

  std::string FileText(const std::string& name, const std::string& path) {
    if (!m_ReadFile) Fail("the file " + Quoted(path) + " may not be named here");
    m_Files[name] = path;
    return EncodeBase64(m_ReadFile(path));
  }

  Json& m_Json;
  Json m_None = Json::object();
  const char* m_Key;
  const ReadFile& m_ReadFile;
  std::map<std::string, std::string> m_Files;
};

Notify ReadNotification(LineMembers& line) {
  if (!line.Has("xml")) return {line.Name(), line.TextParams(), std::nullopt};
  if (line.Has("params")) Fail(R"("params" and "xml" exclude each other)");
  return {line.Name(), {}, line.Text("xml")};
}

struct Kind {
  const char* key;
  std::array<const char*, 2> with;  // null where there is none
  Action (*read)(LineMembers& line);
};

const Kind s_Kinds[] = {
    {"notify",
     {"params", "xml"},
     [](LineMembers& line) -> Action { return ReadNotification(line); }},
    {"command",
     {"params"},
     [](LineMembers& line) -> Action {
       return Command{line.Name(), line.TypedParams()};
     }},
    {"request",
     {"params"},
     [](LineMembers& line) -> Action {
       return Request{line.Name(), line.TypedParams()};
     }},
    {"bind",
     {"class", "capabilities"},
     [](LineMembers& line) -> Action {
       return Bind{line.Id(), line.Text("class"), line.Capabilities()};
     }},
    {"unbind",
     {"class"},
     [](LineMembers& line) -> Action {
       return Unbind{line.Id(), line.Text("class")};
     }},
    {"rooms", {}, [](LineMembers& line) -> Action { return Rooms{line.Outputs()}; }},
    {"persist",
     {},
     [](LineMembers& line) -> Action {
       line.RequireTrue();
       return Persist{};
     }},
    {"restart",
     {},
     [](LineMembers& line) -> Action {
       line.RequireTrue();
       return Restart{};
     }},
    {"start",
     {"config", "state"},
     [](LineMembers& line) -> Action {
       line.RequireTrue();
       return Start{line.TextIfAny("config"), line.TextIfAny("state")};
     }},
};

std::string KindNames() {
  std::string names;
  for (const Kind& kind : s_Kinds) names += (names.empty() ? "" : ", ") + std::string(kind.key);
  return names;
}

// Fails with the key that was perhaps meant.
[[noreturn]] void FailWithoutKind(const Json& json) {
  std::vector<std::string> keys;
  for (const Kind& kind : s_Kinds) keys.emplace_back(kind.key);
  for (const auto& member : json.items()) {
    const std::string meant = DidYouMean(member.key(), keys);
    if (!meant.empty()) Fail("unknown key " + Quoted(member.key()) + meant);
  }
  Fail("none of " + KindNames());
}

const Kind& FindKind(const Json& json) {
  const Kind* found = nullptr;
  for (const Kind& kind : s_Kinds) {
    if (!json.contains(kind.key)) continue;
    if (found) Fail(Quoted(found->key) + " and " + Quoted(kind.key) + " exclude each other");
    found = &kind;
  }
  if (!found) FailWithoutKind(json);
  return *found;
}

void CheckKeys(const Json& json, const Kind& kind) {
  std::vector<std::string> known = {kind.key, "at"};
  for (const char* key : kind.with) {
    if (key) known.emplace_back(key);
  }
  for (const auto& member : json.items()) {
    if (std::find(known.begin(), known.end(), member.key()) != known.end()) continue;
    Fail("unknown key " + Quoted(member.key()) + " beside " + Quoted(kind.key) +
         DidYouMean(member.key(), known));
  }
}

std::optional<double> Seconds(const Json& json) {
  const auto at = json.find("at");
  if (at == json.end()) return std::nullopt;
  if (!at->is_number() || !(at->get<double>() >= 0) || !std::isfinite(at->get<double>())) {
    Fail(R"("at" must be a number of seconds from 0)");
  }
  return at->get<double>();
}

}  // namespace

Line ReadLine(std::string_view text, const ReadFile& readFile) {
  Json json = Parse(text);
  if (!json.is_object()) Fail("not a JSON object");
  const Kind& kind = FindKind(json);
  CheckKeys(json, kind);
  Line line;
  line.at = Seconds(json);
  LineMembers members(json, kind.key, readFile);
  line.action = kind.read(members);
  line.files = std::move(members.Files());
  return line;
}

}  // namespace session
