#include "driverhost/CommandLine.h"

#include "driverhost/run/Verdict.h"
#include "driverhost/web/WebAddress.h"
#include "session/NearestWord.h"
#include "session/Number.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace driverhost {

namespace {

constexpr char s_Colours[] = "NO_COLOR in the environment turns colours off.";

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

Exit status: 0 all went well; 1 the driver failed; 2 the command line or the
session is wrong; 130 interrupted before its end.
)";

constexpr char s_LiveExamples[] =
    R"(After --: the player, a program that is the bound device, with its arguments.

Examples:
  driverhost live -- mpd-player                      binds what MPD plays
  driverhost live --record x.ndjson -- mpd-player    keeps it as a session
  echo '{"command":"PAUSE"}' | driverhost live       takes lines from a person

Exit status: 0 all went well, and when Ctrl-C ends it; 1 the driver or the
player failed, or the record cannot be written; 2 the command line, or a line
of the player or of standard input, is wrong.
)";

constexpr char s_CheckExamples[] = R"(Examples:
  driverhost check cases/*.ndjson                    checks the driver
  driverhost check --coverage cases/*.ndjson         shows what they leave out
  driverhost replay --case S | driverhost check --driver b.so -  compares two

Exit status: 0 all went well; 1 a case differs or the driver failed; 2 the
command line or a case is wrong; 130 interrupted.
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
    const auto value = session::ReadNumber(text);
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

void AddHttp(CLI::App& app, CommandLine& line, const char* help) {
  const auto read = [&line](const std::string& text) {
    try {
      line.http = ReadEndpoint(text);
    } catch (const std::runtime_error& error) {
      throw CLI::ValidationError("--http", error.what());
    }
    line.replay.served = true;
  };
  app.add_option_function<std::string>("--http", read, help)->type_name("[ADDR:]PORT");
  app.add_flag("--http-notify", line.httpNotify, "The page may send notifications too");
}

// Options of the commands that play into one driver.
void DescribeLife(CLI::App& app, CommandLine& line) {
  AddText(app, "--image-root", line.imageRoot, "DIR",
          "Where pictures are written [a temporary directory]");
  AddInteger(app, "--id", line.process.id, 0, "The driver's id [1]");
  app.add_flag("--trace", line.trace, "With --json: the inputs and times, too");
  app.add_flag("--full", line.full, "Whole values, documents indented");
}

// Options of all commands.
void DescribeCommon(CLI::App& app, CommandLine& line, const char* examples) {
  AddText(app, "--driver", line.process.driver, "FILE",
          "The plug-in to load [the one installed with this]");
  AddDecimal(app, "--timeout", line.timeout, "S",
             "Seconds for a call into the driver, 0: no limit [10]");
  AddText(app, "--wrapper", line.process.wrapper, "COMMAND",
          "What starts the driver's process, such as 'gdb --args'");
  app.add_flag("--json", line.json, "One JSON object a line");
  app.add_flag("--quiet", line.quiet, "Show only what is wrong, and the summary");
  app.add_flag("--strict", line.strict, "A hint is a failure");
  app.footer(std::string(examples) + s_Colours);
  app.get_formatter()->column_width(s_OptionColumns);
}

void DescribeReplay(CLI::App& app, CommandLine& line) {
  app.add_option("SESSION", line.session,
                 "A session file, - for standard input [the demonstration]")
      ->type_name("");
  DescribeCommon(app, line, s_ReplayExamples);
  AddHttp(app, line, "Serve the page there, at the end until Ctrl-C");
  app.add_flag("--case", line.replay.asCase, "Make a case: each line, its traffic after it");
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
  AddHttp(app, line, "Serve the page there; without a player until Ctrl-C");
  DescribeLife(app, line);
  AddText(app, "--record", line.record, "FILE", "Write the lines with their times, for replay");
  app.add_flag("--overwrite", line.overwrite, "Replace the record if it exists");
}

void DescribeCheck(CLI::App& app, CommandLine& line) {
  app.add_option("CASE", line.check.cases, "Case files, - for standard input")->type_name("");
  DescribeCommon(app, line, s_CheckExamples);
  AddInteger(app, "--jobs", line.check.jobs, 1,
             "How many cases at a time [one for each processor]");
  AddText(app, "--junit", line.check.junit, "FILE", "Write the results there, as JUnit's XML");
  app.add_flag("--update", line.check.update, "Rewrite the cases with the traffic that comes");
  app.add_flag("--coverage", line.check.coverage, "Show which registered names the cases deliver");
}

struct Subcommand {
  const char* name;
  CommandLine::Command command;
  const char* help;
  void (*describe)(CLI::App&, CommandLine&);
};
constexpr Subcommand s_Subcommands[] = {
    {"replay", CommandLine::Command::Replay, "Play a session into a driver", &DescribeReplay},
    {"live", CommandLine::Command::Live, "Bind a running player to a driver", &DescribeLive},
    {"check", CommandLine::Command::Check, "Play cases and compare the traffic with theirs",
     &DescribeCheck},
};

// The error for a first word that is no command; empty when it is one.
std::string UnknownCommand(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') return {};
  std::vector<std::string> known;
  for (const Subcommand& subcommand : s_Subcommands) {
    if (std::string(subcommand.name) == argv[1]) return {};
    known.emplace_back(subcommand.name);
  }
  return "unknown command \"" + std::string(argv[1]) + '"' + session::DidYouMean(argv[1], known);
}

// The error for words that no command takes where they stand.
std::string Unexpected(const CLI::App& app) {
  const std::vector<std::string> words = app.remaining(true);
  const auto option =
      std::find_if(words.begin(), words.end(), [](const auto& word) { return word[0] == '-'; });
  if (option == words.end()) return "not expected: " + words.front();
  const std::string name = option->substr(0, option->find('='));
  std::string owners;
  std::vector<std::string> known;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_option_no_throw(name)) {
      owners += (owners.empty() ? "\"" : " or \"") + command->get_name() + '"';
    }
    for (const CLI::Option* other : command->get_options()) known.push_back(other->get_name());
  }
  if (owners.empty()) return "unknown option \"" + name + '"' + session::DidYouMean(name, known);
  return name + " stands behind " + owners;
}

// Cuts the player's command line, which follows "--", from the end of a `live` command line.
std::vector<std::string> TakePlayer(int& argc, char** argv) {
  if (argc < 2 || argv[1] != std::string_view("live")) return {};
  char** mark = std::find(argv, argv + argc, std::string_view("--"));
  std::vector<std::string> player(std::min(mark + 1, argv + argc), argv + argc);
  argc = static_cast<int>(mark - argv);
  return player;
}

// What each option cannot say for itself. Throws CLI::ParseError.
void CheckTogether(const CommandLine& line) {
  if (line.replay.asCase && (line.json || line.quiet)) {
    throw CLI::ValidationError("--case", "goes with neither --json nor --quiet");
  }
  if (line.overwrite && line.record.empty()) throw CLI::RequiresError("--overwrite", "--record");
  const std::vector<std::string>& cases = line.check.cases;
  if (line.command == CommandLine::Command::Check && cases.empty()) {
    throw CLI::RequiredError("CASE");
  }
  if (line.check.update && std::find(cases.begin(), cases.end(), "-") != cases.end()) {
    throw CLI::ValidationError("--update", "standard input cannot be rewritten");
  }
}

}  // namespace

namespace {

// Who debugs a driver has a terminal and takes his time; the environment only says what runs.
void CompleteWrapper(CommandLine& line) {
  constexpr double usual = 10;  // seconds
  line.process.lookAlways = line.trace;
  const bool asked = !line.process.wrapper.empty();
  if (line.timeout < 0) line.timeout = asked ? 0 : usual;
  line.process.terminal = asked && isatty(STDIN_FILENO) == 1;
  const char* wrapper = std::getenv("DRIVERHOST_WRAPPER");
  if (!asked && wrapper) line.process.wrapper = wrapper;
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int argc, char** argv, int& status) {
  CommandLine line;
  line.process.program = FromProgram(DRIVERHOST_PROCESS);
  line.process.driver = FromProgram(DRIVERHOST_PLUGIN);
  line.session = FromProgram(DRIVERHOST_DEMO);
  line.player = TakePlayer(argc, argv);
  line.page = FromProgram(DRIVERHOST_PAGE);
  CLI::App app("The bench host for driver plug-ins", "driverhost");
  app.require_subcommand(1);
  app.set_version_flag("--version", "driverhost " DRIVERHOST_VERSION);
  app.footer(s_Examples);
  app.get_formatter()->column_width(s_OptionColumns);
  for (const Subcommand& subcommand : s_Subcommands) {
    CLI::App& command = *app.add_subcommand(subcommand.name, subcommand.help);
    command.set_version_flag("--version", "driverhost " DRIVERHOST_VERSION);
    command.callback([&line, &subcommand] { line.command = subcommand.command; });
    subcommand.describe(command, line);
  }
  const std::string unknown = UnknownCommand(argc, argv);
  if (!unknown.empty()) {
    std::fprintf(stderr, "driverhost: %s\n", unknown.c_str());
    status = s_InputWrong;
    return std::nullopt;
  }
  try {
    app.parse(argc, argv);
    CheckTogether(line);
  } catch (const CLI::ExtrasError&) {
    std::fprintf(stderr, "driverhost: %s\n", Unexpected(app).c_str());
    status = s_InputWrong;
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    status = app.exit(error) == 0 ? s_AllWell : s_InputWrong;
    return std::nullopt;
  }
  CompleteWrapper(line);
  line.check.process = line.process;
  line.check.timeout = line.timeout;
  line.check.json = line.json;
  line.check.quiet = line.quiet;
  line.check.strict = line.strict;
  return line;
}

}  // namespace driverhost
