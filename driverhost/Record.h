#pragma once

#include "standin/Params.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace driverhost {

// One piece of traffic. Texts and parameters are borrowed from the call that reports it.
struct Record {
  enum class To { Variable, Event, Ui, Rooms, Device, Answer, State, Log, File };
  static constexpr std::size_t s_Kinds = 9;

  // A missing document is a null.
  using Value =
      std::variant<std::nullptr_t, unsigned long, std::string_view, const standin::Params*>;
  struct Field {
    const char* key;
    Value value;
  };

  To to;
  std::vector<Field> fields;  // in the order in which they are written

  // Null for a key that the record lacks.
  const Value& operator[](std::string_view key) const;

  // Require: the field is there and has this type.
  std::string_view Text(std::string_view key) const;
  unsigned long Number(std::string_view key) const;
};

// "variable", "event" and so on.
const char* KindName(Record::To to);

// The record as an object, without its step: {"to":"event","id":0}.
nlohmann::ordered_json ToJson(const Record& record);

// The same as a line of text, without a line break; with its step where `step` is not null.
std::string JsonText(const Record& record, const unsigned long* step = nullptr);

}  // namespace driverhost
