#include "driverhost/io/FileContent.h"

#include "driverhost/io/Descriptor.h"
#include "session/Legible.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace driverhost {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& why) {
  throw std::runtime_error("cannot read " + session::Legible(path.native(), 200) + ": " + why);
}

[[noreturn]] void Fail(const std::filesystem::path& path, int error) {
  Fail(path, std::strerror(error));
}

// A NUL would end the name for the system, which then might open another file.
void CheckName(const std::filesystem::path& path) {
  if (path.native().find('\0') != std::string::npos) Fail(path, ENOENT);
}

}  // namespace

FilePtr OpenFile(const std::filesystem::path& path) {
  CheckName(path);
  if (std::error_code ignored; std::filesystem::is_directory(path, ignored)) Fail(path, EISDIR);
  FilePtr file(std::fopen(path.c_str(), "rbe"));
  if (!file) Fail(path, errno);
  return file;
}

std::string ReadFile(const std::filesystem::path& path, std::size_t most) {
  CheckName(path);
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (!file || fstat(file.Get(), &status) != 0) Fail(path, errno);
  if (S_ISDIR(status.st_mode)) Fail(path, EISDIR);
  if (!S_ISREG(status.st_mode)) Fail(path, "it is no regular file");
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > most) Fail(path, "it is larger than " + std::to_string(most >> 20U) + " MiB");
  std::string content(size + 1, '\0');  // one more, to see that it ends there
  std::size_t used = 0;
  while (used < content.size()) {
    const ssize_t part = read(file.Get(), content.data() + used, content.size() - used);
    if (part < 0 && errno == EINTR) continue;
    if (part < 0) Fail(path, errno);
    if (part == 0) break;
    used += static_cast<std::size_t>(part);
  }
  if (used > size) Fail(path, "it holds more than its size says");
  content.resize(used);
  return content;
}

}  // namespace driverhost
