#pragma once

#include "players/mpd/Browser.h"
#include "players/mpd/Commands.h"
#include "players/mpd/CoverArt.h"
#include "players/mpd/Input.h"
#include "players/mpd/Link.h"
#include "players/mpd/Output.h"
#include "players/mpd/Reports.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace mpdplayer {

// The bound device: stands between MPD and the driver, which speaks through standard input and
// output.
class Player {
 public:
  Player(Link::Server server, std::string password, ArtOptions art);

  // Until standard input ends or nobody reads standard output.
  void Run();

 private:
  void OnUp();
  void Password();
  void Ready();
  void OnDown(const std::string& reason);
  void OnChange(std::string_view subsystem);
  void OnRecord(const std::string& record);
  void AskState();
  void OnState(const PlayerState& state);
  void Bind();
  void Reset();
  bool Step();

  Output m_Output;
  Input m_Input;
  Reports m_Reports;
  Link m_Link;
  CoverArt m_CoverArt;
  Browser m_Browser;
  Commands m_Commands;

  std::string m_Password;
  std::set<std::string> m_Allowed;  // the commands that MPD lets us use
  bool m_Online = false;
  bool m_StateAsked = false;
  std::string m_Told;                // the last reason why MPD is away
  std::vector<std::string> m_Early;  // records that came before MPD answered
};

}  // namespace mpdplayer
