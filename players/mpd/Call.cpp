#include "players/mpd/Call.h"

#include "players/mpd/Complaint.h"
#include "players/mpd/SessionLine.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <stdexcept>

namespace mpdplayer {

Call::Call(const std::string& record) {
  try {
    const auto json = nlohmann::json::parse(record);
    if (json.at("to") != "device" || json.at("binding") != 5001) {
      throw std::invalid_argument("it is not for this device");
    }
    m_Name = BytesOf(json.at("command"));
    for (const auto& param : json.at("params")) {
      m_Params.emplace_back(BytesOf(param.at("name")), BytesOf(param.at("value")));
    }
  } catch (const nlohmann::json::exception&) {
    throw std::invalid_argument("it is no record of one");
  }
}

std::optional<std::string> Call::Find(const std::string& wanted) const {
  for (const auto& [key, value] : m_Params) {
    if (key == wanted) return value;
  }
  return {};
}

std::string Call::Text(const std::string& wanted) const {
  const auto value = Find(wanted);
  if (!value || value->empty()) throw std::invalid_argument(wanted + " is missing");
  return *value;
}

std::size_t Call::Number(const std::string& wanted, std::size_t most) const {
  const std::string value = Text(wanted);
  std::size_t number = 0;
  const char* const end = value.data() + value.size();
  const auto [stop, fault] = std::from_chars(value.data(), end, number);
  if (fault != std::errc() || stop != end || number > most) {
    throw std::invalid_argument(wanted + " is " + Quoted(value) + ", not a number from 0 to " +
                                std::to_string(most));
  }
  return number;
}

bool Call::Switch() const {
  const std::string mode = Text("MODE");
  if (mode != "Off" && mode != "On") throw std::invalid_argument("MODE is none of Off,On");
  return mode == "On";
}

Window Call::Window() const {
  constexpr std::size_t last = 1'000'000'000;
  constexpr std::size_t longest = 10'000;
  mpdplayer::Window window;
  if (Find("FIRST")) window.first = Number("FIRST", last);
  if (Find("COUNT")) window.count = Number("COUNT", longest);
  return window;
}

}  // namespace mpdplayer
