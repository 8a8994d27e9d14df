#include "driverhost/CommandLine.h"
#include "driverhost/check/Check.h"
#include "driverhost/io/Guardian.h"
#include "driverhost/io/ImageRoot.h"
#include "driverhost/io/Interrupt.h"
#include "driverhost/io/Loop.h"
#include "driverhost/io/Output.h"
#include "driverhost/io/Terminal.h"
#include "driverhost/live/Live.h"
#include "driverhost/replay/Replay.h"
#include "driverhost/replay/Session.h"
#include "driverhost/report/Hints.h"
#include "driverhost/report/Printers.h"
#include "driverhost/report/Progress.h"
#include "driverhost/report/Recorder.h"
#include "driverhost/report/Summary.h"
#include "driverhost/run/DriverRun.h"
#include "driverhost/run/PlayerBindings.h"
#include "driverhost/web/Page.h"
#include "session/Legible.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>

namespace {

using namespace driverhost;
using Clock = std::chrono::steady_clock;

std::unique_ptr<TrafficSink> MakePrinter(const CommandLine& line, Console& console) {
  if (line.replay.asCase) return std::make_unique<CasePrinter>(console);
  if (line.json && !line.quiet) return std::make_unique<JsonPrinter>(console, line.trace);
  if (line.quiet && isatty(STDERR_FILENO) == 1) return std::make_unique<Progress>();
  if (line.quiet) return std::make_unique<TrafficSink>();
  const TextPrinter::Style style{line.full ? 0 : TerminalColumns(), TakesColours()};
  return std::make_unique<TextPrinter>(console, style);
}

// Whoever closes the pipe has seen enough; that is no failure.
void CheckOutput(const Console& console, Verdict& verdict) {
  const int error = console.Error();
  if (error == 0 || error == EPIPE) return;
  verdict.Fail(s_DriverFailed,
               std::string("driverhost: cannot write to standard output: ") + std::strerror(error));
}

// A driver with all that watches it, as a session and a live player need it.
struct Bench {
  Bench(const CommandLine& commandLine, Loop& loop, Console& theConsole);

  // Where a page is asked for.
  void Serve(std::optional<Page>& page, Loop& loop, Page::Deliver deliver);

  // Ends the program's output with what the run came to. Returns the exit status.
  int Close(unsigned long lines, const std::string& about);

  const CommandLine& line;
  Console& console;
  ImageRoot imageRoot{line.imageRoot};
  DriverProcessOptions process = line.process;
  std::unique_ptr<TrafficSink> printer = MakePrinter(line, console);
  PlayerBindings bindings;
  Hints hints{console, line.player.empty() ? nullptr : &bindings};
  Traffic traffic;
  Verdict verdict{"driverhost", console};
  std::function<void()> onProgress = [] {};
  DriverRun run;
  const Clock::time_point began = Clock::now();
};

Bench::Bench(const CommandLine& commandLine, Loop& loop, Console& theConsole)
    : line(commandLine),
      console(theConsole),
      run(loop, process, line.timeout, traffic, verdict, console, [this] { onProgress(); }) {
  process.imageRoot = imageRoot.Path();
  traffic.Add(*printer);
  traffic.Add(bindings);
  traffic.Add(hints);
}

void Bench::Serve(std::optional<Page>& page, Loop& loop, Page::Deliver deliver) {
  if (!line.http) return;
  page.emplace(loop, WebOptions{*line.http, line.page, imageRoot.Path()}, line.process.driver,
               line.httpNotify, console, std::move(deliver));
  traffic.Add(*page);
}

int Bench::Close(unsigned long lines, const std::string& about) {
  const double seconds = std::chrono::duration<double>(Clock::now() - began).count();
  console.Flush();
  CheckOutput(console, verdict);
  if (line.strict && hints.Serious()) verdict.Fail(s_DriverFailed, "driverhost: there were hints");
  const bool used = imageRoot.KeepIfUsed();
  if (console.Error() == EPIPE) return verdict.Status();
  console.Tell((Interrupted() != 0 ? "interrupted: " : "") +
               SummaryText(lines, run, traffic, seconds) + about +
               (used ? "\npictures below " + imageRoot.Path() : ""));
  return verdict.Status();
}

int RunReplay(const CommandLine& line, Loop& loop, Console& console) {
  Session session(line.session, loop);
  Bench bench(line, loop, console);
  Replay replay(line.replay, session, loop, bench.run, console, bench.verdict);
  std::optional<Page> page;
  bench.Serve(page, loop, [&](Step step) {
    step.number = replay.LastStep();
    bench.run.Deliver(std::move(step));
    return bench.run.TakesLines();
  });
  replay.Run();
  return bench.Close(replay.Lines(), line.replay.repeat > 1 ? '\n' + MemoryText(bench.run) : "");
}

int RunLive(const CommandLine& line, Loop& loop, Console& console) {
  Bench bench(line, loop, console);
  std::optional<Recorder> recorder;
  Live live(line.player, bench.bindings, line.http.has_value(), loop, bench.run, bench.traffic,
            console, bench.verdict);
  bench.onProgress = [&live] { live.Resume(); };
  std::optional<Page> page;
  bench.Serve(page, loop, [&](Step step) {
    live.Deliver(std::move(step));
    return bench.run.TakesLines();
  });
  live.Run([&] {
    if (line.record.empty()) return;
    const auto onFailure = [&live](const std::string& why) { live.Fail(why); };
    bench.traffic.Add(recorder.emplace(line.record, line.overwrite, onFailure));
  });
  ForgetInterrupt();
  return bench.Close(live.Steps(), "");
}

// A file that took the place of a closed standard descriptor would be mixed up with it.
void OpenStandardDescriptors() {
  int opened = 0;
  while (opened >= 0 && opened <= STDERR_FILENO) opened = open("/dev/null", O_RDWR);
  if (opened > STDERR_FILENO) close(opened);
}

int Run(int argc, char** argv) {
  int status = s_AllWell;
  std::optional<CommandLine> line = ReadCommandLine(argc, argv, status);
  if (!line) return status;
  std::setlocale(LC_CTYPE, "C.UTF-8");  // for the widths of characters
  std::signal(SIGPIPE, SIG_IGN);
  mallopt(M_MMAP_THRESHOLD, 128 << 10);  // what was large goes back to the system at once
  StartGuardian();
  CatchInterrupts();
  Loop loop;
  StandardConsole console;
  switch (line->command) {
    case CommandLine::Command::Replay:
      return RunReplay(*line, loop, console);
    case CommandLine::Command::Live:
      return RunLive(*line, loop, console);
    case CommandLine::Command::Check:
      line->check.coloured = TakesColours();
      return RunCheck(line->check, loop, console);
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  int status = s_DriverFailed;
  try {
    OpenStandardDescriptors();
    status = Run(argc, argv);
  } catch (const SessionError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    status = s_InputWrong;
  } catch (const std::bad_alloc&) {
    std::fputs("driverhost: there is too little memory\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "driverhost: %s\n", session::Legible(error.what(), 1000).c_str());
  }
  if (Interrupted() != 0) EndByInterrupt();
  return status;
}
