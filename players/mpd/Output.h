#pragma once

#include <cstddef>
#include <string>

namespace mpdplayer {

// Session lines on their way to a descriptor that may be slow. Writing never blocks: while Full,
// the caller says nothing more until the reader has caught up.
class Output {
 public:
  explicit Output(int fd);

  void Say(const std::string& line);
  bool Empty() const { return m_Written == m_Pending.size(); }
  bool Full() const;

  // Writes what the descriptor takes; to be called when poll says that it takes something. False
  // when nobody will ever read it.
  bool Write();

 private:
  int m_Fd;
  std::size_t m_AtOnce;
  std::string m_Pending;
  std::size_t m_Written = 0;
};

}  // namespace mpdplayer
