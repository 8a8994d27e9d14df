#pragma once

#include "session/LineSplitter.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace driverprocess {

// The socket to the bench: session lines come in, records and reports go out. When the bench is
// gone, or the driver has closed the socket, the process ends.
class Connection {
 public:
  // Takes over a socket that the process was started with, out of the way of a driver that opens
  // and closes descriptors. Throws std::runtime_error when there is none.
  explicit Connection(int descriptor);

  // The next line, valid until the next call; nothing when no more comes.
  std::optional<std::string_view> Read();

  // Sends a line, without its line break, at once. On any thread.
  void Write(std::string line) noexcept;

  // Sends {"KEY":"TEXT"}. On any thread.
  void Report(const char* key, std::string_view text) noexcept;

  // Says why the process cannot go on, which is not the driver's fault, and ends it.
  [[noreturn]] void Fail(std::string_view why) noexcept;

  int Descriptor() const { return m_Socket; }

 private:
  const int m_Socket;
  std::mutex m_Writing;
  session::LineSplitter m_Lines;
};

}  // namespace driverprocess
