#include "driverhost/ImageRoot.h"
#include "driverhost/Interrupt.h"
#include "driverhost/JsonTraffic.h"
#include "driverhost/Legible.h"
#include "driverhost/Number.h"
#include "driverhost/Output.h"
#include "driverhost/Replay.h"
#include "driverhost/Session.h"
#include "driverhost/Summary.h"
#include "driverhost/TextTraffic.h"
#include "driverhost/Traffic.h"
#include "standin/Plugin.h"

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

using namespace driverhost;

struct CommandLine {
  std::string driver;
  std::string session;
  ReplayOptions replay;
  bool json = false;
  bool quiet = false;
};

std::string FromProgram(const char* path) {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  return (program.parent_path() / path).lexically_normal();
}

void AddNumber(CLI::App& app, const std::string& name, unsigned long& number, unsigned long least,
               const std::string& help) {
  const auto read = [name, least, &number](const std::string& text) {
    const auto value = ReadNumber(text);
    if (!value || *value < least) {
      throw CLI::ValidationError(name, "must be an integer from " + std::to_string(least) + " to " +
                                           std::to_string(ULONG_MAX));
    }
    number = *value;
  };
  app.add_option_function<std::string>(name, read, help)->type_name("N");
}

void Describe(CLI::App& app, CommandLine& line) {
  static const CLI::Validator notEmpty(
      [](const std::string& text) { return std::string(text.empty() ? "must not be empty" : ""); },
      "");
  const std::string version = "driverhost " DRIVERHOST_VERSION;
  app.require_subcommand(1);
  app.set_version_flag("--version", version);
  CLI::App& replay = *app.add_subcommand("replay", "Replay a session into a driver plug-in");
  replay.set_version_flag("--version", version);
  replay
      .add_option("SESSION", line.session,
                  "A session file, - for standard input [the demonstration]")
      ->type_name("");
  replay.add_option("--driver", line.driver, "The plug-in to load [the one that came along]")
      ->type_name("FILE")
      ->check(notEmpty);
  replay
      .add_option("--image-root", line.replay.imageRoot,
                  "The directory below which pictures are written [a new temporary one]")
      ->type_name("DIR")
      ->check(notEmpty);
  AddNumber(replay, "--id", line.replay.id, 0, "The driver's id [1]");
  replay.add_flag("--json", line.json, "Show the traffic as one JSON object a line");
  replay.add_flag("--quiet", line.quiet, "Count the traffic, do not show it");
  AddNumber(replay, "--repeat", line.replay.repeat, 1,
            "Replay the session N times into the same driver [1]");
}

std::unique_ptr<Traffic> MakeTraffic(const CommandLine& line, Output& output) {
  if (line.quiet) return std::make_unique<Traffic>();
  if (line.json) return std::make_unique<JsonTraffic>(output);
  const char* noColour = std::getenv("NO_COLOR");
  const bool coloured = isatty(STDOUT_FILENO) == 1 && (!noColour || !*noColour);
  return std::make_unique<TextTraffic>(output, coloured);
}

int RunReplay(CommandLine& line) {
  Session session(line.session);
  const standin::Plugin plugin(line.driver);
  line.replay.imageRoot = MakeImageRoot(line.replay.imageRoot);
  Output output;
  const std::unique_ptr<Traffic> traffic = MakeTraffic(line, output);
  Replay replay(line.replay, plugin, session, *traffic, output);
  const int status = replay.Run();
  if (output.Error() == EPIPE) return status;
  std::string closing = SummaryText(replay.Totals());
  if (line.replay.repeat > 1) closing += MemoryText(replay.Totals());
  closing += "pictures below " + line.replay.imageRoot + '\n';
  std::fputs(closing.c_str(), stderr);
  return status;
}

// A file that took the place of a closed standard descriptor would be mixed up with it.
void OpenStandardDescriptors() {
  int opened = 0;
  while (opened >= 0 && opened <= STDERR_FILENO) opened = open("/dev/null", O_RDWR);
  if (opened > STDERR_FILENO) close(opened);
}

int Run(int argc, char** argv) {
  CLI::App app("The bench host for driver plug-ins", "driverhost");
  CommandLine line;
  line.driver = FromProgram(DRIVERHOST_PLUGIN);
  line.session = FromProgram(DRIVERHOST_DEMO);
  Describe(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? s_Ran : s_Wrong;
  }
  std::signal(SIGPIPE, SIG_IGN);
  CatchInterrupts();
  return RunReplay(line);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    OpenStandardDescriptors();
    return Run(argc, argv);
  } catch (const SessionError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return s_Wrong;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "driverhost: %s\n", Legible(error.what(), 1000).c_str());
    return s_Failed;
  }
}
