#pragma once

#include "session/Params.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace session {

// The kinds of traffic.
enum class To { Variable, Event, Ui, Rooms, Device, Answer, State, Log, File };
constexpr std::size_t s_Kinds = 9;

// "variable", "event" and so on.
const char* NameOf(To kind);

// A member of a record that is being written; what is missing is a null. Everything is borrowed.
using Value = std::variant<std::nullptr_t, unsigned long, std::string_view, const Params*>;
struct Field {
  const char* key;
  Value value;
};

// A record of traffic as JSON, without its step and without a line break:
// {"to":"event","id":0}. The members keep their order. Bytes that are not UTF-8 are written as
// {"bytes":BASE64}.
std::string WriteRecord(To kind, const std::vector<Field>& fields);

// A piece of traffic, as its JSON. Its members are read when they are asked for.
class Record {
 public:
  // Throws std::runtime_error when the text is no record.
  explicit Record(std::string text);

  To Kind() const { return m_Kind; }

  // As WriteRecord writes it.
  const std::string& Json() const { return m_Text; }

  // The same with its step as first member.
  std::string JsonOf(unsigned long step) const;

  // Bytes. Nothing for a member that the record lacks, or that is a null or of another type.
  std::optional<std::string> Text(const char* key) const;
  std::optional<unsigned long> Number(const char* key) const;
  Params Parameters() const;

 private:
  const nlohmann::ordered_json& Members() const;

  std::string m_Text;
  To m_Kind;
  mutable std::shared_ptr<const nlohmann::ordered_json> m_Members;
};

}  // namespace session
