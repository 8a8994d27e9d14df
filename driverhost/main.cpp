#include "driverhost/CallGuard.h"
#include "driverhost/Check.h"
#include "driverhost/CommandLine.h"
#include "driverhost/Hints.h"
#include "driverhost/ImageRoot.h"
#include "driverhost/Interrupt.h"
#include "driverhost/Legible.h"
#include "driverhost/Life.h"
#include "driverhost/Output.h"
#include "driverhost/Printers.h"
#include "driverhost/Progress.h"
#include "driverhost/Replay.h"
#include "driverhost/Session.h"
#include "driverhost/Summary.h"
#include "driverhost/Terminal.h"
#include "driverhost/Traffic.h"
#include "driverhost/Verdict.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <optional>
#include <string>

namespace {

using namespace driverhost;
using Clock = std::chrono::steady_clock;

std::unique_ptr<TrafficSink> MakePrinter(const CommandLine& line, Output& output) {
  if (line.asCase) return std::make_unique<CasePrinter>(output);
  if (line.json && !line.quiet) return std::make_unique<JsonPrinter>(output);
  if (line.quiet && isatty(STDERR_FILENO) == 1) return std::make_unique<Progress>();
  if (line.quiet) return std::make_unique<TrafficSink>();
  const TextPrinter::Style style{line.full ? 0 : TerminalColumns(), TakesColours()};
  return std::make_unique<TextPrinter>(output, style);
}

// The clock is the system's monotonic one, which a signal interrupts.
void SleepUntil(Clock::time_point time) {
  using namespace std::chrono;
  const auto since = duration_cast<nanoseconds>(time.time_since_epoch()).count();
  const timespec until{static_cast<time_t>(since / 1000000000),
                       static_cast<long>(since % 1000000000)};
  while (Interrupted() == 0 &&
         clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
}

// Who closes the pipe has seen enough; that is no failure.
void CheckOutput(const Output& output, Verdict& verdict) {
  const int error = output.Error();
  if (error == 0 || error == EPIPE) return;
  verdict.Fail(s_Failed,
               std::string("driverhost: cannot write to standard output: ") + std::strerror(error));
}

int RunReplay(const CommandLine& line) {
  Session session(line.session);
  Output output;
  CallGuard::Install(output, line.timeout);
  const standin::Plugin plugin(line.driver);
  const ImageRoot imageRoot(line.imageRoot);
  Verdict verdict(output);
  Traffic traffic;
  const LifeOptions options{imageRoot.Path(), line.id};
  Life life(options, plugin, traffic, output, verdict);
  std::unique_ptr<TrafficSink> printer = MakePrinter(line, output);
  traffic.Add(*printer);
  Hints hints(life, output);
  traffic.Add(hints);

  const auto comment = [&](std::string_view text) {
    if (line.asCase) output.Write(std::string(text) + '\n');
  };
  Replay replay(line.replay, session, life, output, verdict, &SleepUntil, comment);
  const auto began = Clock::now();
  replay.Run();
  const double seconds = std::chrono::duration<double>(Clock::now() - began).count();
  printer.reset();

  CheckOutput(output, verdict);
  if (line.strict && hints.Serious()) verdict.Fail(s_Failed, "driverhost: there were hints");
  if (output.Error() == EPIPE) return verdict.Status();
  std::string closing = Interrupted() != 0 ? "interrupted: " : "";
  closing += SummaryText(replay.Lines(), life, traffic, seconds);
  if (line.replay.repeat > 1) closing += MemoryText(life);
  if (imageRoot.Keep()) closing += "pictures below " + imageRoot.Path() + '\n';
  std::fputs(closing.c_str(), stderr);
  return verdict.Status();
}

// A file that took the place of a closed standard descriptor would be mixed up with it.
void OpenStandardDescriptors() {
  int opened = 0;
  while (opened >= 0 && opened <= STDERR_FILENO) opened = open("/dev/null", O_RDWR);
  if (opened > STDERR_FILENO) close(opened);
}

int Run(int argc, char** argv) {
  int status = s_Ran;
  std::optional<CommandLine> line = ReadCommandLine(argc, argv, status);
  if (!line) return status;
  std::setlocale(LC_CTYPE, "C.UTF-8");  // for the widths of characters
  std::signal(SIGPIPE, SIG_IGN);
  CatchInterrupts();
  if (line->command == Command::Replay) return RunReplay(*line);
  line->check.coloured = TakesColours();
  return RunCheck(line->check);
}

}  // namespace

int main(int argc, char** argv) {
  int status = s_Failed;
  try {
    OpenStandardDescriptors();
    status = Run(argc, argv);
  } catch (const SessionError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    status = s_Wrong;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "driverhost: %s\n", Legible(error.what(), 1000).c_str());
  }
  if (Interrupted() != 0) EndByInterrupt();
  return status;
}
