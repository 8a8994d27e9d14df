#include "players/mpd/Complaint.h"
#include "players/mpd/Player.h"

#include <CLI/CLI.hpp>
#include <mpd/settings.h>

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace mpdplayer;

struct CommandLine {
  std::string host;
  std::string port;
  ArtOptions art;
};

constexpr char s_Examples[] =
    R"(MPD_HOST, MPD_PORT and MPD_TIMEOUT are read as mpc does; without them it is
localhost, port 6600, 10 seconds.

Examples:
  driverhost live -- mpd-player                    binds what MPD plays
  driverhost live -- mpd-player --host kitchen     the one in the kitchen
)";

constexpr int s_LastPort = 65535;
constexpr int s_LongestTimeout = 3600;  // seconds

// As wide as the widest option.
constexpr std::size_t s_OptionColumns = 23;

void Describe(CLI::App& app, CommandLine& line) {
  static const std::map<std::string, ArtFormat> formats = {
      {"jpeg", ArtFormat::Jpeg}, {"rgb565", ArtFormat::Rgb565}, {"rgb888", ArtFormat::Rgb888}};
  const auto readFormat = [&line](const std::string& text) {
    const auto format = formats.find(text);
    if (format == formats.end()) {
      throw CLI::ValidationError("--art", "must be jpeg, rgb565 or rgb888");
    }
    line.art.format = format->second;
  };
  constexpr int largest = 3000;
  app.set_version_flag("--version", "mpd-player " MPD_PLAYER_VERSION);
  app.add_option("--host", line.host, "[PASSWORD@]HOST or a socket's path [$MPD_HOST]")
      ->type_name("HOST");
  app.add_option("--port", line.port, "The port there, 1 to 65535 [$MPD_PORT]")
      ->type_name("PORT")
      ->check(CLI::Range(1, s_LastPort).description(""));
  app.add_option_function<std::string>("--art", readFormat,
                                       "How pictures go out: jpeg, rgb565 or rgb888 [jpeg]")
      ->type_name("FORMAT");
  app.add_option("--art-size", line.art.longestSide,
                 "A picture's longest side, 1 to 3000 pixels [600]")
      ->type_name("N")
      ->check(CLI::Range(1, largest).description(""));
  app.get_formatter()->column_width(s_OptionColumns);
  app.footer(s_Examples);
}

struct WrongSetting : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// libmpdclient takes what is no number for none.
void CheckNumber(const char* name, int most) {
  const char* const set = std::getenv(name);
  const std::string text = set ? set : "";
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, number);
  if (text.empty() || (fault == std::errc() && stop == end && number >= 1 && number <= most))
    return;
  throw WrongSetting(std::string(name) + " is " + Quoted(text) + ", not a number from 1 to " +
                     std::to_string(most));
}

// The options replace the environment's variables, so that both are read in the same way, as mpc
// reads them.
std::unique_ptr<mpd_settings, void (*)(mpd_settings*)> Settings(const CommandLine& line) {
  const auto set = [](const char* name, const std::string& option, const char* fallback) {
    if (!option.empty()) setenv(name, option.c_str(), 1);
    const char* value = std::getenv(name);
    if (fallback && (!value || !*value)) setenv(name, fallback, 1);
  };
  set("MPD_HOST", line.host, "localhost");
  set("MPD_PORT", line.port, nullptr);
  set("MPD_TIMEOUT", "", "10");
  CheckNumber("MPD_PORT", s_LastPort);
  CheckNumber("MPD_TIMEOUT", s_LongestTimeout);
  std::unique_ptr<mpd_settings, void (*)(mpd_settings*)> settings(
      mpd_settings_new(nullptr, 0, 0, nullptr, nullptr), &mpd_settings_free);
  if (!settings) throw std::bad_alloc();
  return settings;
}

int Run(int argc, char** argv) {
  CLI::App app("A music player (MPD) as a device that driverhost binds", "mpd-player");
  CommandLine line;
  Describe(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  std::signal(SIGPIPE, SIG_IGN);
  const auto settings = Settings(line);
  const char* password = mpd_settings_get_password(settings.get());
  const std::chrono::milliseconds timeout(mpd_settings_get_timeout_ms(settings.get()));
  const Server server = {mpd_settings_get_host(settings.get()),
                         mpd_settings_get_port(settings.get()), timeout};
  Player player(server, password ? password : "", line.art);
  player.Run();
  if (player.Resolving()) std::quick_exit(0);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const WrongSetting& error) {
    mpdplayer::Complain(error.what());
    return 2;
  } catch (const std::exception& error) {
    mpdplayer::Complain(mpdplayer::Quoted(error.what()));
    return 1;
  }
}
