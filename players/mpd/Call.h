#pragma once

#include "players/mpd/Shelf.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace mpdplayer {

// A command as the driver has sent it. Reading a wrong record or parameter throws
// std::invalid_argument.
class Call {
 public:
  explicit Call(const std::string& record);

  const std::string& Name() const { return m_Name; }
  std::optional<std::string> Find(const std::string& wanted) const;
  std::string Text(const std::string& wanted) const;
  std::size_t Number(const std::string& wanted, std::size_t most) const;
  bool Switch() const;  // MODE, Off or On
  mpdplayer::Window Window() const;

 private:
  std::string m_Name;
  std::vector<std::pair<std::string, std::string>> m_Params;
};

}  // namespace mpdplayer
