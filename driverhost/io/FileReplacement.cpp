#include "driverhost/io/FileReplacement.h"

#include "driverhost/io/Descriptor.h"
#include "driverhost/io/FileContent.h"
#include "session/Legible.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <stdexcept>
#include <utility>

namespace driverhost {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& path, int error) {
  throw std::runtime_error("cannot write " + session::Legible(path.native(), 200) + ": " +
                           std::strerror(error));
}

std::string Resolved(const fs::path& path) {
  std::error_code error;
  const fs::path resolved = fs::canonical(path, error);
  if (error) Fail(path, error.value());
  return resolved;
}

// No signal that can wait comes while the object lives.
class SignalsWait {
 public:
  SignalsWait() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &m_Before);
  }
  ~SignalsWait() { pthread_sigmask(SIG_SETMASK, &m_Before, nullptr); }
  SignalsWait(const SignalsWait&) = delete;
  SignalsWait& operator=(const SignalsWait&) = delete;

 private:
  sigset_t m_Before;
};

// A new file in a folder, for its owner alone. It has no name before Rename, where the file system
// can do that, so that even a killed program leaves nothing.
class NewFile {
 public:
  explicit NewFile(std::string folder) : m_Folder(std::move(folder)), m_File(Open()) {}
  ~NewFile() {
    if (!m_Name.empty()) unlink(m_Name.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  int Number() const { return m_File.Get(); }

  // These return false, with errno, when that cannot be done.
  bool Write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t size = write(Number(), text.data(), text.size());
      if (size < 0) return false;
      text.remove_prefix(static_cast<std::size_t>(size));
    }
    return fsync(Number()) == 0;
  }
  bool Rename(const std::string& path) {
    if (!GiveName() || std::rename(m_Name.c_str(), path.c_str()) != 0) return false;
    m_Name.clear();
    return true;
  }

 private:
  int Open() {
    const int unnamed = open(m_Folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (unnamed >= 0) return unnamed;
    m_Name = m_Folder + "/.driverhost-XXXXXX";
    const int named = mkostemp(m_Name.data(), O_CLOEXEC);
    if (named < 0) m_Name.clear();
    return named;
  }

  bool GiveName() {
    const std::string self = "/proc/self/fd/" + std::to_string(Number());
    std::random_device random;
    while (m_Name.empty()) {
      const std::string name = m_Folder + "/.driverhost-" + std::to_string(random());
      if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
        m_Name = name;
      } else if (errno != EEXIST) {
        return false;
      }
    }
    return true;
  }

  const std::string m_Folder;
  std::string m_Name;
  const Descriptor m_File;
};

}  // namespace

FileReplacement::FileReplacement(const fs::path& path) : m_Path(Resolved(path)) {
  if (!fs::is_regular_file(m_Path)) Fail(path, EINVAL);
  const Descriptor writable(open(m_Path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!writable) Fail(path, errno);
  m_Text = ReadFile(m_Path);
}

void FileReplacement::Replace(std::string_view text) const {
  struct stat old {};
  if (stat(m_Path.c_str(), &old) != 0) Fail(m_Path, errno);
  const SignalsWait wait;
  NewFile file(fs::path(m_Path).parent_path());
  if (file.Number() < 0 || fchown(file.Number(), old.st_uid, old.st_gid) != 0 ||
      fchmod(file.Number(), old.st_mode & 07777U) != 0 || !file.Write(text) ||
      !file.Rename(m_Path)) {
    Fail(m_Path, errno);
  }
}

}  // namespace driverhost
