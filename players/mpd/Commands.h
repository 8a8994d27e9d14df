#pragma once

#include "players/mpd/Browser.h"
#include "players/mpd/Link.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace mpdplayer {

// Carries out what the driver sends to the device. What cannot be carried out is one line on
// standard error.
class Commands {
 public:
  Commands(Link& link, Browser& browser, std::function<void()> onReset)
      : m_Link(link), m_Browser(browser), m_OnReset(std::move(onReset)) {}

  // Carries out the call in a traffic record. Only while the link is up.
  void Obey(const std::string& record);

 private:
  struct Call;

  void Dispatch(const Call& call);
  void Pass(const Call& call, const std::string& mpdCommand);
  void Reset(const Call& call);
  void Play(const Call& call);
  void Seek(const Call& call);
  void SetShuffle(const Call& call);
  void SetRepeat(const Call& call);
  void Menu(const Call& call);
  void Browse(const Call& call);
  void Search(const Call& call);

  Link& m_Link;
  Browser& m_Browser;
  std::function<void()> m_OnReset;
};

}  // namespace mpdplayer
