#include "driverhost/StepTitle.h"

#include "driverhost/Legible.h"

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t s_LongestValue = 32;
constexpr std::size_t s_LongestTitle = 100;

std::string ValueText(const Json& value) {
  if (value.is_string()) return Legible(value.get_ref<const std::string&>(), s_LongestValue);
  if (value.is_object() && value.size() == 1) {
    return value.begin().key() + ':' + ValueText(value.front());
  }
  return value.is_structured() ? "..." : value.dump();
}

void AppendMembers(std::string& title, const Json& members) {
  for (const auto& member : members.items()) {
    if (title.size() > s_LongestTitle) {
      title += " ...";
      return;
    }
    title += ' ' + Legible(member.key(), s_LongestValue) + '=' + ValueText(member.value());
  }
}

}  // namespace

std::string StepTitle(const std::string& kind, const Json& line) {
  std::string title = kind;
  for (const auto& member : line.items()) {
    const Json& value = member.value();
    if (member.key() == "xml" || member.key() == "class") {
      title += "  " + member.key() + '=' + ValueText(value);
    } else if (value.is_object()) {
      title += ' ';
      AppendMembers(title, value);
    } else if (member.key() == kind) {
      title.insert(kind.size(), ' ' + ValueText(value));
    }
  }
  return title;
}

}  // namespace driverhost
