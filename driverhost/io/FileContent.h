#pragma once

#include <cstdio>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>

namespace driverhost {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// Opens a file for reading. Throws std::runtime_error, whose text names the file and the reason,
// when it cannot be opened or is a directory.
FilePtr OpenFile(const std::filesystem::path& path);

// The whole of a regular file of at most `most` bytes. Opens nothing else for longer than it takes
// to see what it is: a pipe, a device or /proc/kmsg might never end, and reading takes from them.
// Throws as OpenFile does.
std::string ReadFile(const std::filesystem::path& path,
                     std::size_t most = std::numeric_limits<std::size_t>::max());

}  // namespace driverhost
