#include "players/mpd/Complaint.h"
#include "players/mpd/Player.h"

#include <CLI/CLI.hpp>
#include <mpd/settings.h>

#include <csignal>
#include <cstdlib>
#include <map>
#include <memory>
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
  constexpr int lastPort = 65535;
  app.set_version_flag("--version", "mpd-player " MPD_PLAYER_VERSION);
  app.add_option("--host", line.host, "[PASSWORD@]HOST or a socket's path [$MPD_HOST]")
      ->type_name("HOST");
  app.add_option("--port", line.port, "The port there, 1 to 65535 [$MPD_PORT]")
      ->type_name("PORT")
      ->check(CLI::Range(1, lastPort).description(""));
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
  const Link::Server server = {mpd_settings_get_host(settings.get()),
                               mpd_settings_get_port(settings.get()), timeout};
  Player(server, password ? password : "", line.art).Run();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    mpdplayer::Complain(mpdplayer::Quoted(error.what()));
    return 1;
  }
}
