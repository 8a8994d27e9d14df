#include "driverhost/io/ImageRoot.h"

#include "driverhost/io/Guardian.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string_view>

namespace driverhost {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view s_Letters =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// Guarded before it is there, so that whoever kills the program in between leaves nothing behind.
std::string MakeTemporary() {
  const char* parent = std::getenv("TMPDIR");
  const std::string start = std::string((parent && *parent) ? parent : "/tmp") + "/driverhost-";
  for (std::random_device random;;) {
    std::string path = start;
    for (int at = 0; at < 6; ++at) path += s_Letters[random() % s_Letters.size()];
    path += '/';
    GuardDirectory(path);
    if (mkdir(path.c_str(), 0700) == 0) return path;
    const int error = errno;
    LeaveDirectory(path);
    if (error != EEXIST) {
      throw std::runtime_error("cannot make a directory " + start +
                               "XXXXXX: " + std::strerror(error));
    }
  }
}

}  // namespace

ImageRoot::ImageRoot(const std::string& asked)
    : m_Path(asked.empty() ? MakeTemporary() : asked), m_Temporary(asked.empty()) {
  std::error_code ignored;
  fs::create_directories(m_Path, ignored);
  if (m_Path.back() != '/') m_Path += '/';
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
