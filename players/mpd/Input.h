#pragma once

#include <functional>
#include <string>

namespace mpdplayer {

// Lines from a descriptor, of a bounded length: a longer one is complained about and skipped.
class Input {
 public:
  using LineHandler = std::function<void(const std::string& line)>;

  Input(int fd, LineHandler onLine) : m_Fd(fd), m_OnLine(std::move(onLine)) {}

  // Reads once; to be called when poll says that there is something. False at the input's end.
  bool Read();

 private:
  void TakeLines();

  int m_Fd;
  LineHandler m_OnLine;
  std::string m_Buffer;
  bool m_Skipping = false;
};

}  // namespace mpdplayer
