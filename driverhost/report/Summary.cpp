#include "driverhost/report/Summary.h"

#include "driverhost/text/Count.h"

#include <cstdio>
#include <fstream>
#include <iterator>

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

std::string SummaryText(unsigned long lines, const DriverRun& run, const Traffic& traffic,
                        double seconds) {
  char speed[80];
  std::snprintf(speed, sizeof speed, "%.3f s, %.0f messages/s", seconds,
                static_cast<double>(run.Messages()) / seconds);
  return Count(lines, "line") + ", " + Count(run.Messages(), "message") + ", " +
         Count(traffic.Count(session::To::Ui), "document") + ", " +
         Count(traffic.Count(session::To::Event), "event") + ", " +
         Count(traffic.Count(session::To::File), "file") + " written, " + speed;
}

std::string MemoryText(const DriverRun& run) {
  std::ifstream file("/proc/self/status");
  const std::string status(std::istreambuf_iterator<char>(file), {});
  return "resident memory " + StatusField(status, "VmHWM") + " at its peak, " +
         StatusField(status, "VmRSS") + " at the end; " + run.ObjectsHeld() + " objects" +
         " held after the last line";
}

}  // namespace driverhost
