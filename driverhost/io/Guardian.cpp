#include "driverhost/io/Guardian.h"

#include "driverhost/io/Child.h"
#include "driverhost/io/FileContent.h"

#include <linux/close_range.h>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <initializer_list>
#include <set>
#include <utility>

namespace driverhost {

namespace {

namespace fs = std::filesystem;

// In the environment of all that this program starts.
constexpr char s_Mark[] = "DRIVERHOST_RUN";
// Killed processes may have started others meanwhile.
constexpr int s_Rounds = 20;
constexpr int s_Lowest = 100;  // descriptor that is not in anybody's way

Descriptor s_Guardian;

// "+PATH\0" and "-PATH\0"; paths may hold line breaks.
void Tell(char what, const std::string& path) {
  if (!s_Guardian) return;
  std::string message(1, what);
  message.append(path).append(1, '\0');
  // A guardian that somebody has killed guards nothing.
  [[maybe_unused]] const ssize_t size = write(s_Guardian.Get(), message.data(), message.size());
}

bool IsMarked(const fs::path& process, const std::string& mark) {
  try {
    const std::string environment = '\0' + ReadFile(process / "environ");
    return environment.find('\0' + mark + '\0') != std::string::npos;
  } catch (const std::exception&) {
    return false;
  }
}

// Returns whether there were any.
bool KillMarked(const std::string& mark) {
  bool found = false;
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename();
    pid_t id = 0;
    std::from_chars(name.data(), name.data() + name.size(), id);
    if (id <= 0 || id == getpid() || !IsMarked(entry->path(), mark)) continue;
    found = kill(id, SIGKILL) == 0 || found;
  }
  return found;
}

// What the guardian does. It ends with the pipe.
[[noreturn]] void Guard(int pipe, const std::string& mark) {
  setsid();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) std::signal(signal, SIG_IGN);
  dup2(pipe, s_Lowest);
  close_range(0, s_Lowest - 1, 0);
  close_range(s_Lowest + 1, ~0U, 0);
  std::set<std::string> directories;
  std::string text;
  std::array<char, 4096> part;
  for (ssize_t size = 0;
       (size = read(s_Lowest, part.data(), part.size())) > 0 || (size < 0 && errno == EINTR);) {
    if (size > 0) text.append(part.data(), static_cast<std::size_t>(size));
    for (std::size_t end = 0; (end = text.find('\0')) != std::string::npos;
         text.erase(0, end + 1)) {
      const std::string path = text.substr(1, end - 1);
      if (text[0] == '+') {
        directories.insert(path);
      } else {
        directories.erase(path);
      }
    }
  }
  for (int round = 0; round < s_Rounds && KillMarked(mark); ++round) usleep(1000);
  std::error_code ignored;
  for (const std::string& directory : directories) fs::remove_all(directory, ignored);
  _exit(0);
}

}  // namespace

void StartGuardian() {
  const std::string id = std::to_string(getpid()) + '.' + std::to_string(std::time(nullptr));
  setenv(s_Mark, id.c_str(), 1);
  Ends pipe = MakePipe();
  const pid_t self = getpid();
  const pid_t guardian = fork();
  if (guardian == 0) {
    if (getppid() != self) _exit(0);
    pipe.two.Close();
    Guard(pipe.one.Get(), std::string(s_Mark) + '=' + id);
  }
  if (guardian > 0) s_Guardian = std::move(pipe.two);
}

void GuardDirectory(const std::string& path) { Tell('+', path); }

void LeaveDirectory(const std::string& path) { Tell('-', path); }

}  // namespace driverhost
