#include "driverhost/FileContent.h"

#include "driverhost/Legible.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace driverhost {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
  throw std::runtime_error("cannot read " + Legible(path.native(), 200) + ": " +
                           std::strerror(error));
}

}  // namespace

FilePtr OpenFile(const std::filesystem::path& path) {
  // A NUL would end the name for the system, which then might open another file.
  if (path.native().find('\0') != std::string::npos) Fail(path, ENOENT);
  if (std::error_code ignored; std::filesystem::is_directory(path, ignored)) Fail(path, EISDIR);
  FilePtr file(std::fopen(path.c_str(), "rbe"));
  if (!file) Fail(path, errno);
  return file;
}

std::string ReadFile(const std::filesystem::path& path) {
  const FilePtr file = OpenFile(path);
  std::string content;
  std::array<char, 65536> part;
  while (const std::size_t size = std::fread(part.data(), 1, part.size(), file.get())) {
    content.append(part.data(), size);
  }
  if (std::ferror(file.get())) Fail(path, errno);
  return content;
}

}  // namespace driverhost
