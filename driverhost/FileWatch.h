#pragma once

#include <string>
#include <vector>

namespace driverhost {

// Notices the files in one directory that are closed after writing.
class FileWatch {
 public:
  // Watches `root` followed by `directory`, both with a separator at the end. If that directory is
  // missing, no file is noticed.
  FileWatch(const std::string& root, std::string directory);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  // The paths below the root of those closed since the last call, in that order. One that is closed
  // several times in a row is listed once.
  std::vector<std::string> Written();

 private:
  const std::string m_Directory;
  const int m_Queue;
};

}  // namespace driverhost
