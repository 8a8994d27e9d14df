#include "driverhost/CommandLine.h"

#include "driverhost/HttpServer.h"
#include "driverhost/NearestWord.h"
#include "driverhost/Number.h"
#include "driverhost/Verdict.h"
#include "host/Version.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace driverhost {

namespace {

constexpr char s_Statuses[] =
    R"(Exit status: 0 all went well; 1 the driver failed or a case differs; 2 the
command line, the session or a case is wrong; 130 interrupted. NO_COLOR in the
environment turns colours off.)";

constexpr char s_Examples[] = R"(Examples:
  driverhost replay                     plays the demonstration
  driverhost live -- mpd-player         plays along with what MPD plays
  driverhost check cases/*.ndjson       checks the driver
  driverhost replay --help              shows the options of replay
)";

constexpr char s_ReplayExamples[] = R"(Examples:
  driverhost replay                          plays the demonstration
  driverhost replay --json evening.ndjson    one JSON object a line
  driverhost replay --case evening.ndjson    makes a case for "check"
)";

constexpr char s_LiveExamples[] =
    R"(After --: the player, a program that is the bound device, with its arguments.

Examples:
  driverhost live -- mpd-player                      binds what MPD plays
  driverhost live --record x.ndjson -- mpd-player    keeps it as a session
  echo '{"command":"PAUSE"}' | driverhost live       takes lines from a person
)";

constexpr char s_CheckExamples[] = R"(Examples:
  driverhost check cases/*.ndjson                    checks the driver
  driverhost check --coverage cases/*.ndjson         shows what they leave out
  driverhost replay --case S | driverhost check --driver b.so -  compares two
)";

// The columns of the widest option. Descriptions begin after them; no line has more than 80.
constexpr std::size_t s_OptionColumns = 23;

std::string FromProgram(const char* path) {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  return (program.parent_path() / path).lexically_normal();
}

const CLI::Validator s_NotEmpty(
    [](const std::string& text) { return std::string(text.empty() ? "must not be empty" : ""); },
    "");

void AddText(CLI::App& app, const std::string& name, std::string& text, const char* type,
             const std::string& help) {
  app.add_option(name, text, help)->type_name(type)->check(s_NotEmpty);
}

void AddInteger(CLI::App& app, const std::string& name, unsigned long& number, unsigned long least,
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

void AddDecimal(CLI::App& app, const std::string& name, double& number, const char* type,
                const std::string& help) {
  constexpr double most = 1e6;
  const auto read = [name, &number](const double& value) {
    if (!(value >= 0 && value <= most)) {
      throw CLI::ValidationError(name, "must be a number from 0 to 1000000");
    }
    number = value;
  };
  app.add_option_function<double>(name, read, help)->type_name(type);
}

void AddHttp(CLI::App& app, CommandLine& line) {
  const auto read = [&line](const std::string& text) {
    try {
      line.http = ReadEndpoint(text);
    } catch (const std::runtime_error& error) {
      throw CLI::ValidationError("--http", error.what());
    }
    line.replay.served = true;
  };
  app.add_option_function<std::string>("--http", read, "Serve the page there until Ctrl-C")
      ->type_name("[ADDR:]PORT");
}

// Options of the commands that play into one driver.
void DescribeLife(CLI::App& app, CommandLine& line) {
  AddText(app, "--image-root", line.imageRoot, "DIR",
          "Where pictures are written [a temporary directory]");
  AddInteger(app, "--id", line.id, 0, "The driver's id [1]");
  AddHttp(app, line);
  app.add_flag("--full", line.full, "Whole values, documents indented");
}

// Options of all commands.
void DescribeCommon(CLI::App& app, CommandLine& line, const char* examples) {
  AddText(app, "--driver", line.driver, "FILE",
          "The plug-in to load [the one installed with this]");
  AddDecimal(app, "--timeout", line.timeout, "S",
             "Seconds for a call into the driver, 0: no limit [10]");
  app.add_flag("--json", line.json, "One JSON object a line");
  app.add_flag("--quiet", line.quiet, "Show only what is wrong, and the summary");
  app.add_flag("--strict", line.strict, "A hint is a failure");
  app.footer(examples + std::string("\n") + s_Statuses);
  app.get_formatter()->column_width(s_OptionColumns);
}

void DescribeReplay(CLI::App& app, CommandLine& line) {
  app.add_option("SESSION", line.session,
                 "A session file, - for standard input [the demonstration]")
      ->type_name("");
  DescribeCommon(app, line, s_ReplayExamples);
  app.add_flag("--case", line.asCase, "Make a case: each line, its traffic after it");
  DescribeLife(app, line);
  AddInteger(app, "--repeat", line.replay.repeat, 1,
             "Play the session N times into the same driver [1]");
  AddDecimal(app, "--pace", line.replay.pace, "X",
             "Keep the lines' times, X times as fast [do not wait]");
}

void DescribeLive(CLI::App& app, CommandLine& line) {
  const auto formatter = std::make_shared<CLI::Formatter>();
  formatter->label("OPTIONS", "OPTIONS] [-- PLAYER ARG...");
  app.formatter(formatter);
  DescribeCommon(app, line, s_LiveExamples);
  DescribeLife(app, line);
  AddText(app, "--record", line.record, "FILE", "Write the lines with their times, for replay");
}

void DescribeCheck(CLI::App& app, CommandLine& line) {
  app.add_option("CASE", line.check.cases, "Case files, - for standard input")->type_name("");
  DescribeCommon(app, line, s_CheckExamples);
  app.add_flag("--update", line.check.update, "Rewrite the cases with the traffic that comes");
  app.add_flag("--coverage", line.check.coverage, "Show which registered names the cases deliver");
}

struct Subcommand {
  const char* name;
  Command command;
  const char* help;
  void (*describe)(CLI::App&, CommandLine&);
};
constexpr Subcommand s_Subcommands[] = {
    {"replay", Command::Replay, "Play a session into a driver", &DescribeReplay},
    {"live", Command::Live, "Bind a running player to a driver", &DescribeLive},
    {"check", Command::Check, "Play cases and compare the traffic with theirs", &DescribeCheck},
};

// The error for a first word that is no command; empty when it is one.
std::string UnknownCommand(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return {};
  std::vector<std::string> known;
  for (const Subcommand& subcommand : s_Subcommands) {
    if (std::string(subcommand.name) == argv[1]) return {};
    known.emplace_back(subcommand.name);
  }
  return "unknown command \"" + std::string(argv[1]) + '"' + DidYouMean(argv[1], known);
}

// Cuts the player's command line, which follows "--", from the end of a `live` command line.
std::vector<std::string> TakePlayer(int& argc, char** argv) {
  if (argc < 2 || argv[1] != std::string_view("live")) return {};
  char** mark = std::find(argv, argv + argc, std::string_view("--"));
  std::vector<std::string> player(std::min(mark + 1, argv + argc), argv + argc);
  argc = static_cast<int>(mark - argv);
  return player;
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int argc, char** argv, int& status) {
  CommandLine line;
  line.driver = FromProgram(DRIVERHOST_PLUGIN);
  line.session = FromProgram(DRIVERHOST_DEMO);
  line.player = TakePlayer(argc, argv);
  line.page = FromProgram(DRIVERHOST_PAGE);
  CLI::App app("The bench host for driver plug-ins", "driverhost");
  app.require_subcommand(1);
  app.set_version_flag("--version", "driverhost " MEDIAPROXY_VERSION);
  app.footer(s_Examples);
  app.get_formatter()->column_width(s_OptionColumns);
  for (const Subcommand& subcommand : s_Subcommands) {
    CLI::App& command = *app.add_subcommand(subcommand.name, subcommand.help);
    command.set_version_flag("--version", "driverhost " MEDIAPROXY_VERSION);
    command.callback([&line, &subcommand] { line.command = subcommand.command; });
    subcommand.describe(command, line);
  }
  const std::string unknown = UnknownCommand(argc, argv);
  if (!unknown.empty()) {
    std::fprintf(stderr, "driverhost: %s\n", unknown.c_str());
    status = s_Wrong;
    return std::nullopt;
  }
  try {
    app.parse(argc, argv);
    if (line.asCase && (line.json || line.quiet)) {
      throw CLI::ValidationError("--case", "goes with neither --json nor --quiet");
    }
    if (line.command == Command::Check && line.check.cases.empty()) {
      throw CLI::RequiredError("CASE");
    }
  } catch (const CLI::ParseError& error) {
    status = app.exit(error) == 0 ? s_Ran : s_Wrong;
    return std::nullopt;
  }
  line.check.driver = line.driver;
  line.check.timeout = line.timeout;
  line.check.json = line.json;
  line.check.quiet = line.quiet;
  line.check.strict = line.strict;
  return line;
}

}  // namespace driverhost
