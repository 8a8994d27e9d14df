#include "driverhost/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace driverhost {

void Output::Flush() {
  std::string_view rest = m_Pending;
  while (!rest.empty() && m_Error == 0) {
    const ssize_t written = write(STDOUT_FILENO, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {  // whoever shares the output has made it non-blocking
      pollfd output{STDOUT_FILENO, POLLOUT, 0};
      poll(&output, 1, -1);
    } else if (errno != EINTR) {
      m_Error = errno;
    }
  }
  m_Pending.clear();
}

}  // namespace driverhost
