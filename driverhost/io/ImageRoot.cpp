#include "driverhost/io/ImageRoot.h"

#include "driverhost/io/Guardian.h"

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
  if (m_Temporary) GuardDirectory(m_Path);
}

ImageRoot::~ImageRoot() {
  std::error_code ignored;
  if (m_Temporary) fs::remove_all(m_Path, ignored);
  LeaveDirectory(m_Path);
}

bool ImageRoot::KeepIfUsed() {
  std::error_code error;
  if (!m_Temporary) return fs::is_directory(m_Path, error);
  const fs::recursive_directory_iterator entries(m_Path, error);
  m_Temporary = error || std::all_of(begin(entries), end(entries),
                                     [](const auto& entry) { return entry.is_directory(); });
  return !m_Temporary;
}

}  // namespace driverhost
