#pragma once

#include "driverhost/Life.h"
#include "driverhost/LineReader.h"
#include "driverhost/Output.h"
#include "driverhost/Page.h"
#include "driverhost/Player.h"
#include "driverhost/Readiness.h"
#include "driverhost/Verdict.h"

#include <boost/asio/io_context.hpp>

#include <optional>
#include <string>
#include <vector>

namespace driverhost {

// A driver's life with a player and with all others who send session lines. Each line becomes a
// step when it comes, numbered from 1. One thread, one loop.
class Live {
 public:
  // `player` is the program with its arguments, empty for none; `http` says where the page is, if
  // there is one; `interrupted` is the descriptor of CatchInterrupts. The rest is borrowed and
  // outlives the object.
  Live(const std::vector<std::string>& player, const std::optional<HttpOptions>& http,
       int interrupted, Life& life, Traffic& traffic, Output& output, Verdict& verdict);

  // Runs once: until the player has ended; without player and page, until standard input has; or
  // until a signal comes. Failures go to the verdict.
  void Run();

  // The lines delivered.
  unsigned long Steps() const { return m_Steps; }

 private:
  // Return whether more lines are wanted.
  bool Take(const LineSplitter::Line& line, const std::string& source);
  bool Deliver(const Step& step);

  void Start();
  void Stop();
  void OnPlayerEnd(std::optional<int> status);

  Life& m_Life;
  Output& m_Output;
  Verdict& m_Verdict;
  boost::asio::io_context m_Loop;
  Readiness m_Interrupt;
  LineReader m_Input;
  std::optional<Player> m_Player;
  std::optional<Page> m_Page;
  unsigned long m_Steps = 0;
  bool m_Stopping = false;
};

}  // namespace driverhost
