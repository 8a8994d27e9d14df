// driverprocess PLUGIN ID IMAGE-ROOT [always]: the process in which one driver lives. Descriptor 3
// is a socket: lines of a session come in, each complete; records of traffic and reports go out.
// When the socket's input ends, the driver is destroyed and the process ends.

#include "driverprocess/Connection.h"
#include "driverprocess/LastSignal.h"
#include "driverprocess/Life.h"
#include "session/ReadLine.h"

#include <sys/prctl.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <variant>

namespace {

using namespace driverprocess;

constexpr int s_Socket = 3;

// The lines that a driver gets after it has thrown were on their way before that was known.
void Play(Connection& connection, Life& life) {
  const auto first = connection.Read();
  if (!first) return;
  bool alive = life.Begin(std::get<session::Start>(session::ReadLine(*first).action));
  while (alive) {
    const auto line = connection.Read();
    if (!line) break;
    alive = life.Take(session::ReadLine(*line).action);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fputs("driverprocess is started by driverhost\n", stderr);
    return 2;
  }
  std::setvbuf(stdout, nullptr, _IOLBF, 0);  // what a driver prints is seen at once
  prctl(PR_SET_CHILD_SUBREAPER, 1);          // what it starts stays below it, where Leftovers looks
  try {
    Connection connection(s_Socket);
    ReportLastSignal(connection.Descriptor());
    const LifeOptions options{argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], argc > 4};
    Life life(connection, options);
    Play(connection, life);
    life.End();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "driverprocess: %s\n", error.what());
    return 1;
  }
}
