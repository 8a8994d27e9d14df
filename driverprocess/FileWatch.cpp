#include "driverprocess/FileWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

namespace driverprocess {

namespace {

namespace fs = std::filesystem;

constexpr unsigned s_Events = IN_CLOSE_WRITE | IN_CREATE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;

}  // namespace

// The list of files that one call gives.
class FileWatch::Files {
 public:
  // A file that is closed after it was found in its new directory is the same news.
  void Close(const std::string& path) {
    if (!m_Found.contains(path)) m_Paths.push_back(path);
  }
  void Find(const std::string& path) {
    if (m_Found.insert(path).second) m_Paths.push_back(path);
  }
  void Leave(const std::string& path) { std::erase(m_Paths, path); }

  std::vector<std::string> Take() { return std::move(m_Paths); }

 private:
  std::vector<std::string> m_Paths;
  std::set<std::string> m_Found;
};

FileWatch::FileWatch(const std::string& root)
    : m_Root(fs::absolute(root)), m_Queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  Enter("");
}

FileWatch::~FileWatch() { close(m_Queue); }

std::vector<std::string> FileWatch::Enter(const std::string& directory) {
  std::vector<std::string> files;
  for (std::vector<std::string> left = {directory}; !left.empty();) {
    const std::string parent = left.back();
    left.pop_back();
    const int watch = inotify_add_watch(m_Queue, (m_Root + parent).c_str(), s_Events);
    if (watch < 0) continue;
    m_Directories[watch] = parent;
    std::error_code error;
    for (fs::directory_iterator entry(m_Root + parent, error), end; !error && entry != end;
         entry.increment(error)) {
      std::error_code gone;
      const fs::file_type type = entry->symlink_status(gone).type();
      const std::string path = parent + entry->path().filename().native();
      if (type == fs::file_type::directory) left.push_back(path + '/');
      if (type == fs::file_type::regular) files.push_back(path);
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

void FileWatch::Leave(const std::string& directory) {
  std::erase_if(m_Directories, [&](const auto& watched) {
    const bool left = watched.second.starts_with(directory);
    if (left) inotify_rm_watch(m_Queue, watched.first);
    return left;
  });
}

void FileWatch::Take(const inotify_event& event, Files& files) {
  const auto directory = m_Directories.find(event.wd);
  if (directory == m_Directories.end()) return;
  if ((event.mask & IN_IGNORED) != 0) m_Directories.erase(directory);
  if (event.len == 0) return;
  const std::string path = directory->second + event.name;
  const bool comes = (event.mask & (IN_CREATE | IN_MOVED_TO)) != 0;
  if ((event.mask & IN_ISDIR) != 0) {
    if (!comes) return Leave(path + '/');
    for (const std::string& found : Enter(path + '/')) files.Find(found);
    return;
  }
  if ((event.mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) != 0) files.Close(path);
  if ((event.mask & IN_MOVED_FROM) != 0) files.Leave(path);
}

std::vector<std::string> FileWatch::Written() {
  Files files;
  alignas(inotify_event) char events[16 * (sizeof(inotify_event) + NAME_MAX + 1)];
  ssize_t size = 0;
  while ((size = read(m_Queue, events, sizeof events)) > 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
      const auto* event = reinterpret_cast<const inotify_event*>(events + at);
      at += sizeof(inotify_event) + event->len;
      Take(*event, files);
    }
  }
  return files.Take();
}

}  // namespace driverprocess
