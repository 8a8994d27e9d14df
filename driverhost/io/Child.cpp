#include "driverhost/io/Child.h"

#include "session/Legible.h"

#include <linux/close_range.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace driverhost {

namespace {

[[noreturn]] void Fail(const char* what) {
  throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> Environment(const std::map<std::string, std::string>& added) {
  std::vector<std::string> all;
  for (char** variable = environ; *variable; ++variable) {
    const std::string_view text = *variable;
    if (!added.contains(std::string(text.substr(0, text.find('='))))) all.emplace_back(text);
  }
  for (const auto& [name, value] : added) all.emplace_back(name).append(1, '=').append(value);
  return all;
}

// The terminal's foreground is the group of whoever shall read from it.
void GiveTerminal(int terminal) {
  const auto before = std::signal(SIGTTOU, SIG_IGN);
  tcsetpgrp(terminal, getpgrp());
  std::signal(SIGTTOU, before);
}

// What the new process does; returns only when that fails. May use nothing that allocates.
void Become(const ChildOptions& options, char** arguments, char** environment, int failure,
            pid_t parent) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, options.signalAtEnd);
  if (getppid() != parent) _exit(1);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGCHLD}) std::signal(signal, SIG_DFL);
  const int count = static_cast<int>(options.descriptors.size());
  if (options.terminal) GiveTerminal(options.descriptors[0]);
  // Out of the way first, so that none is overwritten before it is taken.
  failure = fcntl(failure, F_DUPFD_CLOEXEC, 100);
  for (int at = 0; at < count; ++at) {
    if (dup2(options.descriptors[static_cast<std::size_t>(at)], 50 + at) < 0) return;
  }
  for (int at = 0; at < count; ++at) dup2(50 + at, at);
  close_range(static_cast<unsigned>(count), ~0U, CLOSE_RANGE_CLOEXEC);
  execvpe(arguments[0], arguments, environment);
  const int error = errno;
  [[maybe_unused]] const ssize_t written = write(failure, &error, sizeof error);
}

}  // namespace

Ends MakePipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) Fail("no pipe");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Ends MakeSocketPair() {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) Fail("no socket");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

void SetNonBlocking(int descriptor) {
  fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

pid_t StartChild(const ChildOptions& options) {
  std::vector<std::string> environment = Environment(options.environment);
  const std::vector<char*> arguments = Pointers(options.command);
  const std::vector<char*> variables = Pointers(environment);
  Ends failure = MakePipe();  // closed by the program's start; otherwise the errno comes through it
  const pid_t self = getpid();
  const pid_t id = fork();
  if (id == 0) {
    Become(options, const_cast<char**>(arguments.data()), const_cast<char**>(variables.data()),
           failure.two.Get(), self);
    _exit(1);
  }
  int error = errno;
  failure.two.Close();
  if (id < 0 || read(failure.one.Get(), &error, sizeof error) > 0) {
    if (id > 0) waitpid(id, nullptr, 0);
    throw std::runtime_error("cannot start " + session::Legible(options.command[0], 200) + ": " +
                             std::strerror(error));
  }
  setpgid(id, id);
  return id;
}

}  // namespace driverhost
