#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace session {

// Cuts a stream of bytes into lines and counts them. A byte order mark at the start of the stream
// and a carriage return at the end of a line are dropped. Nothing is kept of a line that is too
// long.
class LineSplitter {
 public:
  // Bytes, without the line break; what a session's line has at most.
  static constexpr std::size_t s_LongestLine = std::size_t{64} << 20U;

  explicit LineSplitter(std::size_t longest = s_LongestLine) : m_Longest(longest) {}

  struct Line {
    unsigned long number;  // from 1
    std::string_view text;
    bool tooLong;
  };

  void Append(std::string_view bytes);

  // No more bytes come: what is left without a line break is the last line.
  void End();

  // The next whole line. Its text is valid until the next call of Append or End.
  std::optional<Line> Next();

  // How many lines Next has given.
  unsigned long Count() const { return m_Count; }

 private:
  std::size_t m_Longest;
  std::string m_Buffer;
  std::size_t m_Begin = 0;     // of the next line
  std::size_t m_Searched = 0;  // no line break lies between m_Begin and here
  unsigned long m_Count = 0;
  bool m_TooLong = false;  // the head of the next line has been dropped
};

}  // namespace session
