#include "driverhost/Summary.h"

#include "driverhost/Count.h"
#include "driverhost/FileContent.h"

#include <cstdio>

namespace driverhost {

namespace {

// One line of the process's status, such as "1234 kB".
std::string StatusField(const std::string& status, const std::string& name) {
  const std::size_t at = status.find('\n' + name + ':');
  if (at == std::string::npos) return "unknown";
  const std::size_t start = status.find_first_not_of(" \t", at + name.size() + 2);
  return status.substr(start, status.find('\n', start) - start);
}

}  // namespace

std::string SummaryText(unsigned long lines, const Life& life, const Traffic& traffic,
                        double seconds) {
  char speed[80];
  std::snprintf(speed, sizeof speed, "%.3f s, %.0f messages/s\n", seconds,
                static_cast<double>(life.Messages()) / seconds);
  return Count(lines, "line") + ", " + Count(life.Messages(), "message") + ", " +
         Count(traffic.Count(Record::To::Ui), "document") + ", " +
         Count(traffic.Count(Record::To::Event), "event") + ", " +
         Count(traffic.Count(Record::To::File), "file") + " written, " + speed;
}

std::string MemoryText(const Life& life) {
  const std::string status = ReadFile("/proc/self/status");
  return "resident memory " + StatusField(status, "VmHWM") + " at its peak, " +
         StatusField(status, "VmRSS") + " at the end; " + Count(life.ObjectsHeld(), "object") +
         " held after the last line\n";
}

}  // namespace driverhost
