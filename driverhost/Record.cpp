#include "driverhost/Record.h"

#include "driverhost/Base64.h"
#include "driverhost/Legible.h"

#include <nlohmann/json.hpp>

#include <array>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

struct ValueToJson {
  Json operator()(std::nullptr_t) const { return nullptr; }
  Json operator()(unsigned long number) const { return number; }
  Json operator()(std::string_view text) const {
    if (IsUtf8(text)) return text;
    return {{"bytes", EncodeBase64(text)}};
  }
  Json operator()(const standin::Params* params) const {
    Json list = Json::array();
    for (const auto& [name, value, type] : *params) {
      list.push_back({{"name", (*this)(name)}, {"type", (*this)(type)}, {"value", (*this)(value)}});
    }
    return list;
  }
};

}  // namespace

const Record::Value& Record::operator[](std::string_view key) const {
  static const Value none;
  for (const Field& field : fields) {
    if (field.key == key) return field.value;
  }
  return none;
}

std::string_view Record::Text(std::string_view key) const {
  return std::get<std::string_view>((*this)[key]);
}

unsigned long Record::Number(std::string_view key) const {
  return std::get<unsigned long>((*this)[key]);
}

const char* KindName(Record::To to) {
  static constexpr std::array<const char*, Record::s_Kinds> names = {
      "variable", "event", "ui", "rooms", "device", "answer", "state", "log", "file"};
  return names.at(static_cast<std::size_t>(to));
}

nlohmann::ordered_json ToJson(const Record& record) {
  Json object = {{"to", KindName(record.to)}};
  for (const auto& [key, value] : record.fields) object[key] = std::visit(ValueToJson(), value);
  return object;
}

std::string JsonText(const Record& record, const unsigned long* step) {
  std::string text = ToJson(record).dump();
  if (step) text.insert(1, "\"step\":" + std::to_string(*step) + ',');
  return text;
}

}  // namespace driverhost
