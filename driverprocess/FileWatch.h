#pragma once

#include <map>
#include <string>
#include <vector>

struct inotify_event;

namespace driverprocess {

// Notices the files below a directory that are closed after writing or moved there, in directories
// that are made later, too.
class FileWatch {
 public:
  // `root` ends with a separator. Of a directory that is missing or cannot be watched, no file is
  // noticed; links are not followed.
  explicit FileWatch(const std::string& root);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  // The paths below the root of those closed since the last call, in that order; those that a new
  // directory already held come by name. One that is closed several times in a row is listed once.
  std::vector<std::string> Written();

 private:
  class Files;

  void Take(const inotify_event& event, Files& files);

  // Watches a directory and those in it. Returns the files in them.
  std::vector<std::string> Enter(const std::string& directory);

  // The same no longer.
  void Leave(const std::string& directory);

  const std::string m_Root;
  const int m_Queue;
  std::map<int, std::string> m_Directories;  // by their watches: paths below the root, "a/b/"
};

}  // namespace driverprocess
