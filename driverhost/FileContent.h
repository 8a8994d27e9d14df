#pragma once

#include <cstdio>
#include <filesystem>
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

// The whole of a file. Throws as OpenFile does.
std::string ReadFile(const std::filesystem::path& path);

}  // namespace driverhost
