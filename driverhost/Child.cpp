#include "driverhost/Child.h"

#include "driverhost/Legible.h"

#include <linux/close_range.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace driverhost {

namespace {

class Pipe {
 public:
  Pipe() {
    if (pipe2(m_Ends, O_CLOEXEC) != 0) {
      throw std::runtime_error(std::string("no pipe: ") + std::strerror(errno));
    }
  }
  ~Pipe() {
    Close(m_Ends[0]);
    Close(m_Ends[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int Reader() const { return m_Ends[0]; }
  int Writer() const { return m_Ends[1]; }
  void CloseWriter() { Close(m_Ends[1]); }

  // The end is the caller's from now on.
  int TakeReader() { return std::exchange(m_Ends[0], -1); }
  int TakeWriter() { return std::exchange(m_Ends[1], -1); }

 private:
  static void Close(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }

  int m_Ends[2];
};

// What the new process does; returns only when that fails. May use nothing that allocates.
void Become(char** arguments, const Pipe& input, const Pipe& output, pid_t parent) {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);
  std::signal(SIGPIPE, SIG_DFL);
  dup2(input.Reader(), STDIN_FILENO);
  dup2(output.Writer(), STDOUT_FILENO);
  close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  execvp(arguments[0], arguments);
}

}  // namespace

Child StartChild(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  Pipe input;
  Pipe output;
  Pipe failure;  // closed by the program's start; otherwise the errno comes through it
  const pid_t self = getpid();
  const pid_t id = fork();
  if (id == 0) {
    Become(arguments.data(), input, output, self);
    const int error = errno;
    _exit(write(failure.Writer(), &error, sizeof error) < 0 ? 1 : 0);
  }
  int error = errno;
  failure.CloseWriter();
  if (id < 0 || read(failure.Reader(), &error, sizeof error) > 0) {
    if (id > 0) waitpid(id, nullptr, 0);
    throw std::runtime_error("cannot start " + Legible(command[0], 200) + ": " +
                             std::strerror(error));
  }
  setpgid(id, id);
  fcntl(input.Writer(), F_SETFL, O_NONBLOCK);
  return {id, input.TakeWriter(), output.TakeReader()};
}

}  // namespace driverhost
