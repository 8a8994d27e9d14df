#pragma once

#include "players/mpd/Actions.h"
#include "players/mpd/Browser.h"
#include "players/mpd/Call.h"
#include "players/mpd/Link.h"
#include "players/mpd/Output.h"
#include "players/mpd/Queue.h"
#include "players/mpd/Volume.h"

#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <string>
#include <vector>

namespace mpdplayer {

// Carries out what the driver sends to the device. What cannot be carried out is told to the user
// interfaces and is one line on standard error. Commands that the loss of the connection has
// interrupted, and those that come while it is made, wait for MPD where that makes sense.
class Commands {
 public:
  struct Rooms {
    Link& link;
    Output& output;
    Queue& queue;
    Actions& actions;
    Browser& browser;
    Volume& volume;
    std::function<void()> onReset;
  };

  Commands(boost::asio::io_context& loop, Rooms rooms);

  // Carries out the call in a traffic record.
  void Obey(const std::string& record);

  // Whether MPD has said what it does, and the link is up.
  void SetOnline(bool online);

 private:
  struct Row;

  static const Row* Find(const Call& call);
  void Obey(const Call& call, bool again);
  void Dispatch(const Row& row, const Call& call, const Ended& ended);
  void OnLost(const Row& row, const Call& call, bool again, const std::string& why);
  void Keep(const Call& call);
  void Refuse(const Call& call, const std::string& why);

  void Reset(const Call& call, const Ended& ended);
  void Play(const Call& call, const Ended& ended);
  void Seek(const Call& call, const Ended& ended);
  void SetShuffle(const Call& call, const Ended& ended);
  void SetRepeat(const Call& call, const Ended& ended);
  void SetConsume(const Call& call, const Ended& ended);
  void SetCrossfade(const Call& call, const Ended& ended);
  void SetOutput(const Call& call, const Ended& ended);
  void SetVolume(const Call& call, const Ended& ended);
  void SetMute(const Call& call, const Ended& ended);
  void Add(const Call& call, const Ended& ended);
  void Remove(const Call& call, const Ended& ended);
  void Move(const Call& call, const Ended& ended);
  void SaveQueue(const Call& call, const Ended& ended);
  void Menu(const Call& call, const Ended& ended);
  void Browse(const Call& call, const Ended& ended);
  void Search(const Call& call, const Ended& ended);

  Rooms m_Rooms;
  bool m_Online = false;
  std::vector<Call> m_Kept;
  boost::asio::steady_timer m_Patience;
};

}  // namespace mpdplayer
