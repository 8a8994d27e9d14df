#pragma once

#include "players/mpd/Gate.h"
#include "players/mpd/Watch.h"

#include <cstddef>
#include <functional>
#include <string>

namespace mpdplayer {

// Session lines on their way to a descriptor that may be slow. Writing never blocks.
class Output {
 public:
  // `onClosed` is called when nobody will ever read the descriptor.
  Output(boost::asio::io_context& loop, int fd, std::function<void()> onClosed);

  void Say(const std::string& line);

  // Calls `go` when the reader has caught up: at once, unless much is waiting for it.
  void WhenRoom(std::function<void()> go) { m_Room.Pass(std::move(go)); }

  // Writes what the descriptor takes now; for the end of the program.
  void Flush();

 private:
  void Wait();
  void Write();
  std::size_t Waiting() const { return m_Pending.size() - m_Written; }

  int m_Fd;
  std::size_t m_AtOnce;
  std::function<void()> m_OnClosed;
  Watch m_Watch;
  Gate m_Room;
  std::string m_Pending;
  std::size_t m_Written = 0;
};

}  // namespace mpdplayer
