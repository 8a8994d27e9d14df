#include "session/Record.h"

#include "session/Base64.h"
#include "session/Utf8.h"

#include <nlohmann/json.hpp>

#include <array>
#include <stdexcept>

namespace session {

namespace {

using Object = nlohmann::ordered_json;

constexpr std::array<const char*, s_Kinds> s_Names = {"variable", "event", "ui",  "rooms", "device",
                                                      "answer",   "state", "log", "file"};

struct ToJson {
  Object operator()(std::nullptr_t) const { return nullptr; }
  Object operator()(unsigned long number) const { return number; }
  Object operator()(std::string_view text) const {
    if (IsUtf8(text)) return text;
    return {{"bytes", EncodeBase64(text)}};
  }
  Object operator()(const Params* params) const {
    Object list = Object::array();
    for (const auto& [name, value, type] : *params) {
      list.push_back({{"name", (*this)(name)}, {"type", (*this)(type)}, {"value", (*this)(value)}});
    }
    return list;
  }
};

std::optional<std::string> TextIn(const Object& value) {
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_object() || !value.contains("bytes") || !value["bytes"].is_string()) return {};
  return DecodeBase64(value["bytes"].get_ref<const std::string&>());
}

std::string TextOf(const Object& object, const char* key) {
  const auto member = object.find(key);
  return member == object.end() ? std::string() : TextIn(*member).value_or("");
}

// The kind stands first: {"to":"ui",
std::optional<To> KindIn(std::string_view text) {
  constexpr std::string_view start = R"({"to":")";
  if (!text.starts_with(start)) return {};
  text.remove_prefix(start.size());
  const std::string_view name = text.substr(0, text.find('"'));
  for (std::size_t kind = 0; kind < s_Kinds; ++kind) {
    if (name == s_Names[kind]) return static_cast<To>(kind);
  }
  return {};
}

}  // namespace

const char* NameOf(To kind) { return s_Names.at(static_cast<std::size_t>(kind)); }

std::string WriteRecord(To kind, const std::vector<Field>& fields) {
  Object object = {{"to", NameOf(kind)}};
  for (const auto& [key, value] : fields) object[key] = std::visit(ToJson(), value);
  return object.dump();
}

Record::Record(std::string text) : m_Text(std::move(text)) {
  const auto kind = KindIn(m_Text);
  if (!kind || !Object::accept(m_Text)) throw std::runtime_error("this is no record");
  m_Kind = *kind;
}

std::string Record::JsonOf(unsigned long step) const {
  std::string text;
  const std::string number = std::to_string(step);
  text.reserve(m_Text.size() + number.size() + 8);
  return text.append("{\"step\":").append(number).append(1, ',').append(m_Text, 1);
}

const Object& Record::Members() const {
  if (!m_Members) m_Members = std::make_shared<Object>(Object::parse(m_Text));
  return *m_Members;
}

std::optional<std::string> Record::Text(const char* key) const {
  const auto member = Members().find(key);
  if (member == Members().end()) return {};
  return TextIn(*member);
}

std::optional<unsigned long> Record::Number(const char* key) const {
  const auto member = Members().find(key);
  if (member == Members().end() || !member->is_number_unsigned()) return {};
  return member->get<unsigned long>();
}

Params Record::Parameters() const {
  Params params;
  const auto member = Members().find("params");
  if (member == Members().end() || !member->is_array()) return params;
  for (const Object& param : *member) {
    if (!param.is_object()) continue;
    params.push_back({TextOf(param, "name"), TextOf(param, "value"), TextOf(param, "type")});
  }
  return params;
}

}  // namespace session
