#pragma once

#include "players/mpd/Watch.h"

#include <functional>
#include <string>

namespace mpdplayer {

// Lines from a descriptor, of a bounded length: a longer one is complained about and skipped.
class Input {
 public:
  struct Handlers {
    std::function<void(const std::string& line)> onLine;
    std::function<void()> onEnd;
    std::function<void(std::function<void()> go)> pace;  // calls `go` when more can be taken
  };

  Input(boost::asio::io_context& loop, int fd, Handlers handlers);

  void Start();

 private:
  void Read();
  void TakeLines();

  int m_Fd;
  Handlers m_Handlers;
  Watch m_Watch;
  std::string m_Buffer;
  bool m_Skipping = false;
};

}  // namespace mpdplayer
