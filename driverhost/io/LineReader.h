#pragma once

#include "driverhost/io/Readiness.h"
#include "session/LineSplitter.h"

#include <boost/asio/io_context.hpp>

#include <cstddef>
#include <functional>

namespace driverhost {

// Reads lines from a descriptor within a loop: reads a part, hands out its lines, reads the next
// part. So the writer is never faster than the one who takes the lines.
class LineReader {
 public:
  // Returns whether lines are still wanted.
  using OnLine = std::function<bool(const session::LineSplitter::Line&)>;

  // `descriptor` is borrowed and outlives the object. `onEnd` is called once, after the last line,
  // unless lines are no longer wanted.
  LineReader(boost::asio::io_context& loop, int descriptor, OnLine onLine,
             std::function<void()> onEnd);

  void Start();

  // Until Resume is called, no line is handed out and nothing is read.
  void Pause() { m_Paused = !m_Draining; }
  void Resume();

  // Reads what the pipe holds now, and nothing that is written into it later; even while paused.
  void ReadRest();

 private:
  void OnReadable();

  // Returns how many bytes there were.
  std::size_t ReadPart();
  void TakeLines();
  void End();

  const int m_Descriptor;
  const OnLine m_OnLine;
  const std::function<void()> m_OnEnd;
  Readiness m_Readiness;
  session::LineSplitter m_Splitter;
  bool m_Wanted = true;
  bool m_Waiting = false;
  bool m_Paused = false;
  bool m_Draining = false;
  bool m_Ended = false;  // all has been read
};

}  // namespace driverhost
