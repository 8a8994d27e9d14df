#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace driverprocess {

// What a driver may leave in its process: threads, processes, timers, signal handlers, another
// signal mask, working directory, umask or locale, open descriptors.
class Leftovers {
 public:
  // What there is now is not the driver's.
  Leftovers();

  // What has come since, in words, each once. With `always` unset it looks only so often that it
  // takes a small part of the time.
  std::vector<std::string> New(bool always);

 private:
  using Clock = std::chrono::steady_clock;

  // Each thing by its kind and name, with its value.
  using Things = std::map<std::string, std::string>;
  static Things Look();

  Things m_Known;
  Clock::time_point m_Next;
};

}  // namespace driverprocess
