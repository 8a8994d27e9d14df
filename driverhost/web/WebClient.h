#pragma once

#include <string>

namespace driverhost {

// What became of a client's line.
struct LineAnswer {
  enum class Result { Done, Wrong, Forbidden, Unavailable };
  Result result;
  std::string text;  // what the line has caused, as a JSON array; otherwise what is wrong
};

// One connection. It lives as long as something is still to come: its next bytes, the end of its
// writing, the answer to its line.
class WebClient {
 public:
  virtual ~WebClient() = default;

  // Closes the connection at once.
  virtual void Close() = 0;

  // The program ends: what the client waits for is sent, if it reads that soon.
  virtual void Finish() = 0;

  // There may be more to tell.
  virtual void Wake() {}

  // Its turn has come: the line that it has to deliver, which is answered by OnAnswer.
  virtual std::string TakeLine() = 0;
  virtual void OnAnswer(LineAnswer answer) = 0;
};

}  // namespace driverhost
