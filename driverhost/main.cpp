#include "driverhost/CallGuard.h"
#include "driverhost/Check.h"
#include "driverhost/CommandLine.h"
#include "driverhost/Hints.h"
#include "driverhost/ImageRoot.h"
#include "driverhost/Interrupt.h"
#include "driverhost/Legible.h"
#include "driverhost/Life.h"
#include "driverhost/Live.h"
#include "driverhost/Output.h"
#include "driverhost/Printers.h"
#include "driverhost/Progress.h"
#include "driverhost/Recorder.h"
#include "driverhost/Replay.h"
#include "driverhost/Serving.h"
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

// Clock runs as CLOCK_MONOTONIC does. A signal that asks the program to stop ends the sleep.
bool SleepUntil(Clock::time_point time) {
  using namespace std::chrono;
  const auto since = duration_cast<nanoseconds>(time.time_since_epoch()).count();
  const timespec until{static_cast<time_t>(since / 1000000000),
                       static_cast<long>(since % 1000000000)};
  while (Interrupted() == 0 &&
         clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
  return Interrupted() == 0;
}

// Whoever closes the pipe has seen enough; that is no failure.
void CheckOutput(const Output& output, Verdict& verdict) {
  const int error = output.Error();
  if (error == 0 || error == EPIPE) return;
  verdict.Fail(s_Failed,
               std::string("driverhost: cannot write to standard output: ") + std::strerror(error));
}

// A driver with all that watches it, as a session and a live player need it.
struct Bench {
  explicit Bench(const CommandLine& commandLine);

  // Ends the program's output with what the life came to. Returns the exit status.
  int Close(unsigned long lines, double seconds, const std::string& about);

  const CommandLine& line;
  Output output;
  standin::Plugin plugin;
  ImageRoot imageRoot{line.imageRoot};
  Verdict verdict{"driverhost", output};
  Traffic traffic;
  LifeOptions options{imageRoot.Path(), line.id};
  Life life{options, plugin, traffic, output, verdict};
  std::unique_ptr<TrafficSink> printer = MakePrinter(line, output);
  Hints hints{life, output, !line.player.empty()};
  std::optional<HttpOptions> http;
};

// A driver may misbehave even while it is loaded.
const std::string& Guarded(const CommandLine& line, Output& output) {
  CallGuard::Install(output, line.timeout);
  return line.driver;
}

Bench::Bench(const CommandLine& commandLine)
    : line(commandLine), plugin(Guarded(commandLine, output)) {
  traffic.Add(*printer);
  traffic.Add(hints);
  if (line.http) http = HttpOptions{*line.http, line.page, imageRoot.Path()};
}

int Bench::Close(unsigned long lines, double seconds, const std::string& about) {
  printer.reset();
  CheckOutput(output, verdict);
  if (line.strict && hints.Serious()) verdict.Fail(s_Failed, "driverhost: there were hints");
  if (output.Error() == EPIPE) return verdict.Status();
  std::string closing = Interrupted() != 0 ? "interrupted: " : "";
  closing += SummaryText(lines, life, traffic, seconds) + about;
  if (imageRoot.Keep()) closing += "pictures below " + imageRoot.Path() + '\n';
  std::fputs(closing.c_str(), stderr);
  return verdict.Status();
}

double SecondsSince(Clock::time_point time) {
  return std::chrono::duration<double>(Clock::now() - time).count();
}

int RunReplay(const CommandLine& line, int interrupt) {
  Session session(line.session);
  Bench bench(line);
  const auto comment = [&](std::string_view text) {
    if (line.asCase) bench.output.Write(std::string(text) + '\n');
  };
  std::optional<Serving> serving;
  if (bench.http) {
    serving.emplace(*bench.http, interrupt, bench.life, bench.traffic, bench.verdict);
    session.WaitBeforeReading([&](int descriptor) { return serving->UntilReadable(descriptor); });
  }
  const auto wait = [&](Clock::time_point time) {
    return serving ? serving->Until(time) : SleepUntil(time);
  };
  Replay replay(line.replay, session, bench.life, bench.output, bench.verdict, wait, comment);
  const auto began = Clock::now();
  replay.Run();
  const double seconds = SecondsSince(began);
  const bool rounds = line.replay.repeat > 1;
  return bench.Close(replay.Lines(), seconds, rounds ? MemoryText(bench.life) : "");
}

int RunLive(const CommandLine& line, int interrupt) {
  Bench bench(line);
  std::optional<Recorder> recorder;
  if (!line.record.empty()) bench.traffic.Add(recorder.emplace(line.record));
  Live live(line.player, bench.http, interrupt, bench.life, bench.traffic, bench.output,
            bench.verdict);
  const auto began = Clock::now();
  live.Run();
  const double seconds = SecondsSince(began);
  ForgetInterrupt();
  if (recorder && recorder->Error() != 0) {
    bench.verdict.Fail(s_Failed, "driverhost: cannot write " + line.record + ": " +
                                     std::strerror(recorder->Error()));
  }
  return bench.Close(live.Steps(), seconds, "");
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
  const int interrupt = CatchInterrupts();
  if (line->command == Command::Replay) return RunReplay(*line, interrupt);
  if (line->command == Command::Live) return RunLive(*line, interrupt);
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
