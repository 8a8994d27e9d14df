#include "driverprocess/Leftovers.h"

#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace driverprocess {

namespace {

namespace fs = std::filesystem;
using Things = std::map<std::string, std::string>;

// Looking takes at most this part of the time.
constexpr int s_Part = 25;

std::string Content(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <class Add>
void ForEachEntry(const char* folder, Add add) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    add(entry->path());
  }
}

void LookAtThreads(Things& things) {
  ForEachEntry("/proc/self/task", [&things](const fs::path& thread) {
    things["a thread of its own: " + thread.filename().native()] = "";
    std::istringstream children(Content(thread / "children"));
    for (std::string child; children >> child;) {
      std::string name = Content("/proc/" + child + "/comm");
      if (!name.empty()) name.pop_back();
      things["a process: " + child] = name;
    }
  });
}

void LookAtDescriptors(Things& things) {
  ForEachEntry("/proc/self/fd", [&things](const fs::path& link) {
    std::error_code error;
    const std::string target = fs::read_symlink(link, error);
    if (!error && target.find("/fd") == std::string::npos) {
      things["the open descriptor " + link.filename().native()] = target;
    }
  });
}

void LookAtSignals(Things& things) {
  for (int signal = 1; signal < NSIG; ++signal) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_DFL) continue;
    const char* name = sigabbrev_np(signal);
    const std::string shown = name ? std::string("SIG") + name : std::to_string(signal);
    const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
    things["another handler of " + shown] =
        action.sa_handler == SIG_IGN ? "ignored" : std::to_string(handler);
  }
  sigset_t mask;
  sigprocmask(SIG_BLOCK, nullptr, &mask);
  std::string blocked;
  for (int signal = 1; signal < NSIG; ++signal) {
    if (sigismember(&mask, signal) == 1) blocked += ' ' + std::to_string(signal);
  }
  things["another signal mask:"] = blocked;
}

void LookAtTimers(Things& things) {
  constexpr std::pair<int, const char*> timers[] = {{ITIMER_REAL, "ITIMER_REAL"},
                                                    {ITIMER_VIRTUAL, "ITIMER_VIRTUAL"},
                                                    {ITIMER_PROF, "ITIMER_PROF"}};
  for (const auto& [timer, name] : timers) {
    itimerval time{};
    if (getitimer(timer, &time) == 0 && timerisset(&time.it_value))
      things[std::string("the timer ") + name] = "";
  }
  std::istringstream rows(Content("/proc/self/timers"));
  for (std::string word; rows >> word;) {
    if (word == "ID:" && rows >> word) things["a timer: " + word] = "";
  }
}

}  // namespace

Leftovers::Leftovers() : m_Known(Look()) {}

Things Leftovers::Look() {
  Things things;
  LookAtThreads(things);
  LookAtDescriptors(things);
  LookAtSignals(things);
  LookAtTimers(things);
  std::error_code ignored;
  things["another working directory:"] = fs::current_path(ignored);
  const mode_t mask = umask(0);
  umask(mask);
  std::ostringstream octal;
  octal << std::oct << mask;
  things["another umask:"] = octal.str();
  things["another locale:"] = std::setlocale(LC_ALL, nullptr);
  return things;
}

std::vector<std::string> Leftovers::New(bool always) {
  const auto began = Clock::now();
  std::vector<std::string> words;
  if (!always && began < m_Next) return words;
  for (const auto& [what, value] : Look()) {
    const auto [known, isNew] = m_Known.try_emplace(what, value);
    if (!isNew && known->second == value) continue;
    known->second = value;
    std::string& word = words.emplace_back(what);
    if (value.empty()) continue;
    const bool named = what.ends_with(':');
    word.append(named ? " " : " (").append(value).append(named ? "" : ")");
  }
  const auto now = Clock::now();
  m_Next = now + s_Part * (now - began);
  return words;
}

}  // namespace driverprocess
