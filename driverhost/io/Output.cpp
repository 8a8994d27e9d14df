#include "driverhost/io/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace driverhost {

namespace {

constexpr std::size_t s_Much = std::size_t{64} << 10U;

}  // namespace

void Output::Flush() {
  std::string_view rest = m_Pending;
  while (!rest.empty() && m_Error == 0) {
    const ssize_t written = write(m_Descriptor, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {  // whoever shares the output has made it non-blocking
      pollfd output{m_Descriptor, POLLOUT, 0};
      poll(&output, 1, -1);
    } else if (errno != EINTR) {
      m_Error = errno;
    }
  }
  m_Pending.clear();
}

void Output::FlushMuch() {
  if (m_Pending.size() >= s_Much) Flush();
}

void StandardConsole::Tell(std::string_view line) {
  m_Out.Flush();
  m_Error.Write(line);
  m_Error.Write("\n");
  m_Error.Flush();
}

void HeldConsole::Tell(std::string_view line) {
  Hold(m_Error, line);
  Hold(m_Error, "\n");
}

void HeldConsole::Hold(std::string& text, std::string_view more) {
  if (m_Full) return;
  m_Full = text.size() + more.size() > s_MostBytes;
  text += m_Full ? "... the rest is left out\n" : more;
}

void HeldConsole::SayOn(Console& console) {
  console.Write(m_Out);
  if (!m_Error.empty()) console.Tell(std::string_view(m_Error).substr(0, m_Error.size() - 1));
  m_Out.clear();
  m_Error.clear();
}

}  // namespace driverhost
