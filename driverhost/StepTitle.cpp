#include "driverhost/StepTitle.h"

#include "driverhost/Legible.h"

#include <nlohmann/json.hpp>

#include <cstddef>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t s_LongestValue = 32;
constexpr std::size_t s_LongestTitle = 400;

class Title {
 public:
  explicit Title(bool whole) : m_Whole(whole) {}

  // The title begins with the kind and its name, wherever they stand in the line.
  std::string Of(const Json& line) {
    std::string rest;
    for (const auto& [key, value] : line.items()) {
      if (key == "at") continue;
      if (value.is_object()) {
        rest += ' ' + Members(value);
        if (key == "rooms") m_Head = key;
      } else if (key == "xml" || key == "class") {
        rest += "  " + key + '=' + Value(value);
      } else {
        m_Head = value.is_boolean() ? key : key + ' ' + Value(value);
      }
    }
    return m_Head + rest;
  }

 private:
  std::string Shown(const std::string& text) const {
    return Legible(text, m_Whole ? text.size() * 4 : s_LongestValue);
  }

  std::string Value(const Json& value) const {
    if (value.is_string()) return Shown(value.get_ref<const std::string&>());
    if (value.is_object() && value.size() == 1) {
      return value.begin().key() + ':' + Value(value.front());
    }
    return value.is_structured() ? "..." : value.dump();
  }

  std::string Members(const Json& members) const {
    std::string text;
    for (const auto& [key, value] : members.items()) {
      if (!m_Whole && text.size() > s_LongestTitle) return text + " ...";
      text += ' ' + Shown(key) + '=' + Value(value);
    }
    return text;
  }

  const bool m_Whole;
  std::string m_Head;
};

}  // namespace

std::string StepTitle(std::string_view line, bool whole) {
  return Title(whole).Of(Json::parse(line));
}

}  // namespace driverhost
