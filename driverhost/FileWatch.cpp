#include "driverhost/FileWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <climits>
#include <cstddef>
#include <utility>

namespace driverhost {

FileWatch::FileWatch(const std::string& root, std::string directory)
    : m_Directory(std::move(directory)), m_Queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  inotify_add_watch(m_Queue, (root + m_Directory).c_str(), IN_CLOSE_WRITE | IN_ONLYDIR);
}

FileWatch::~FileWatch() { close(m_Queue); }

std::vector<std::string> FileWatch::Written() {
  std::vector<std::string> paths;
  alignas(inotify_event) char events[16 * (sizeof(inotify_event) + NAME_MAX + 1)];
  ssize_t size = 0;
  while ((size = read(m_Queue, events, sizeof events)) > 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
      const auto* event = reinterpret_cast<const inotify_event*>(events + at);
      if (event->len > 0) paths.push_back(m_Directory + event->name);
      at += sizeof(inotify_event) + event->len;
    }
  }
  return paths;
}

}  // namespace driverhost
