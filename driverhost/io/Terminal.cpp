#include "driverhost/io/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace driverhost {

bool TakesColours() {
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) == 1 && (!noColour || !*noColour) && terminal && *terminal &&
         std::string_view(terminal) != "dumb";
}

std::size_t TerminalColumns() {
  constexpr std::size_t least = 40;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return std::max<std::size_t>(size.ws_col, least);
}

}  // namespace driverhost
