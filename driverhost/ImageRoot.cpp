#include "driverhost/ImageRoot.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace driverhost {

namespace fs = std::filesystem;

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

ImageRoot::ImageRoot(const std::string& asked)
    : m_Path(asked.empty() ? MakeTemporary() : asked), m_Temporary(asked.empty()) {
  std::error_code ignored;
  fs::create_directories(m_Path, ignored);
  if (m_Path.back() != '/') m_Path += '/';
}

bool ImageRoot::Keep() const {
  std::error_code error;
  if (m_Temporary) {
    const fs::recursive_directory_iterator entries(m_Path, error);
    if (!error && std::all_of(begin(entries), end(entries),
                              [](const auto& entry) { return entry.is_directory(); })) {
      fs::remove_all(m_Path, error);
    }
  }
  return fs::is_directory(m_Path, error);
}

}  // namespace driverhost
