#include "driverhost/Summary.h"

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

std::string SummaryText(const Figures& figures) {
  const Traffic::Counts& traffic = figures.traffic;
  char text[240];
  std::snprintf(text, sizeof text,
                "%lu lines, %lu messages, %zu documents, %zu events, %zu files written, %.3f s, "
                "%.0f messages/s\n",
                figures.lines, figures.messages, traffic.documents, traffic.events, traffic.files,
                figures.seconds, static_cast<double>(figures.messages) / figures.seconds);
  return text;
}

std::string MemoryText(const Figures& figures) {
  const std::string status = ReadFile("/proc/self/status");
  return "resident memory " + StatusField(status, "VmHWM") + " at its peak, " +
         StatusField(status, "VmRSS") + " at the end; " + std::to_string(figures.objectsHeld) +
         " objects held after the last line\n";
}

}  // namespace driverhost
