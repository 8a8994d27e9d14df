#include "driverhost/report/Recorder.h"

#include "session/Legible.h"
#include "session/WriteLine.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace driverhost {

namespace {

std::string CannotWrite(const std::string& path, int error) {
  return "cannot write " + session::Legible(path, 200) + ": " + std::strerror(error);
}

Descriptor Create(const std::string& path, bool overwrite) {
  const int existing = overwrite ? O_TRUNC : O_EXCL;
  Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | existing, 0666));
  if (file) return file;
  const int error = errno;
  throw std::runtime_error(CannotWrite(path, error) +
                           (error == EEXIST ? " (--overwrite replaces it)" : ""));
}

// {..."at":1.234}
std::string WithTime(std::string line, std::chrono::milliseconds time) {
  char at[40];
  const long long count = time.count();
  std::snprintf(at, sizeof at, ",\"at\":%lld.%03lld}\n", count / 1000, count % 1000);
  line.pop_back();
  return line + at;
}

}  // namespace

Recorder::Recorder(std::string path, bool overwrite, OnFailure onFailure)
    : m_Path(std::move(path)),
      m_OnFailure(std::move(onFailure)),
      m_File(Create(m_Path, overwrite)) {}

void Recorder::OnStep(const Step& step) {
  if (step.text.empty() || !m_File) return;
  const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - m_Began);
  session::Line untimed = step.line;
  untimed.at.reset();
  const std::string line = WithTime(session::WriteLine(untimed), time);
  if (Write(line)) {
    m_Size += static_cast<off_t>(line.size());
    return;
  }
  const int error = errno;
  [[maybe_unused]] const int cut = ftruncate(m_File.Get(), m_Size);
  m_File.Close();
  m_OnFailure(CannotWrite(m_Path, error));
}

// Fails with errno, an interrupt included: who asks for the end waits for no reader of a pipe.
bool Recorder::Write(const std::string& line) const {
  for (std::string_view rest = line; !rest.empty();) {
    const ssize_t size = write(m_File.Get(), rest.data(), rest.size());
    if (size < 0) return false;
    rest.remove_prefix(static_cast<std::size_t>(size));
  }
  return true;
}

}  // namespace driverhost
