#include "driverhost/web/Picture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace driverhost {

namespace {

namespace fs = std::filesystem;

bool IsBelow(const fs::path& root, const fs::path& file) {
  return std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first == root.end();
}

bool IsRegular(int descriptor) {
  struct stat about = {};
  return fstat(descriptor, &about) == 0 && S_ISREG(about.st_mode);
}

}  // namespace

// The links in a path are followed first, to know where it leads. What is open then is looked at
// again: the path may have changed in between.
FilePtr OpenPicture(const std::string& root, std::string_view path) {
  std::error_code error;
  const fs::path top = fs::canonical(root, error);
  if (error) return nullptr;
  const fs::path file = fs::canonical(top / fs::path(path).relative_path(), error);
  if (error || !IsBelow(top, file) || !fs::is_regular_file(file, error)) return nullptr;
  const int descriptor = open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  FilePtr picture(fdopen(descriptor, "rb"));
  if (!picture) {
    close(descriptor);
    return nullptr;
  }
  const fs::path opened = fs::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error);
  if (error || !IsBelow(top, opened) || !IsRegular(descriptor)) return nullptr;
  return picture;
}

std::string PictureType(std::string_view path) {
  static constexpr std::array<std::pair<const char*, const char*>, 5> types = {{
      {".gif", "image/gif"},
      {".jpeg", "image/jpeg"},
      {".jpg", "image/jpeg"},
      {".png", "image/png"},
      {".webp", "image/webp"},
  }};
  for (const auto& [ending, type] : types) {
    if (path.ends_with(ending)) return type;
  }
  return "application/octet-stream";
}

}  // namespace driverhost
