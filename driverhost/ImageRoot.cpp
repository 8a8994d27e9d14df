#include "driverhost/ImageRoot.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace driverhost {

namespace {

std::string MakeTemporary() {
  const char* parent = std::getenv("TMPDIR");
  std::string path = (parent && *parent) ? parent : "/tmp";
  path += "/driverhost-XXXXXX";
  if (!mkdtemp(path.data())) {
    throw std::runtime_error("cannot make a directory " + path + ": " + std::strerror(errno));
  }
  return path;
}

}  // namespace

std::string MakeImageRoot(const std::string& asked) {
  std::string path = asked.empty() ? MakeTemporary() : asked;
  std::error_code ignored;
  std::filesystem::create_directories(path, ignored);
  if (path.back() != '/') path += '/';
  return path;
}

}  // namespace driverhost
