#pragma once

#include "players/mpd/Actions.h"
#include "players/mpd/Browser.h"
#include "players/mpd/Commands.h"
#include "players/mpd/CoverArt.h"
#include "players/mpd/Input.h"
#include "players/mpd/Link.h"
#include "players/mpd/Output.h"
#include "players/mpd/PlayerState.h"
#include "players/mpd/Queue.h"
#include "players/mpd/Reports.h"
#include "players/mpd/Volume.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <set>
#include <string>
#include <string_view>

namespace mpdplayer {

// The bound device: stands between MPD and the driver, which speaks through standard input and
// output.
class Player {
 public:
  Player(const Server& server, std::string password, ArtOptions art);

  // Until standard input ends or nobody reads standard output.
  void Run();

  // The object cannot be destroyed before a name server has answered.
  bool Resolving() const { return m_Link.Resolving(); }

 private:
  void OnUp();
  void Password();
  void OnDown(const std::string& reason);
  void OnChange(std::string_view subsystem);
  void AskState();
  void OnState(const PlayerState& state);
  void LookAgain(const mpd_status& status);
  void TellChangedLists(const mpd_status& status, bool wasOnline);
  void Bind();
  void Reset();

  boost::asio::io_context m_Loop{1};
  Output m_Output;
  Input m_Input;
  Link m_Link;
  Volume m_Volume;
  Reports m_Reports;
  CoverArt m_CoverArt;
  Queue m_Queue;
  Actions m_Actions;
  Browser m_Browser;
  Commands m_Commands;
  boost::asio::steady_timer m_NextLook;

  std::string m_Password;
  std::set<std::string> m_Allowed;  // the commands that MPD lets us use
  bool m_Online = false;
  bool m_StateAsked = false;
  unsigned m_QueueVersion = 0;
  std::string m_Told;  // the last reason why MPD is away
};

}  // namespace mpdplayer
