#pragma once

#include "session/Line.h"
#include "session/LineSplitter.h"

#include <filesystem>
#include <string>

namespace driverhost {

// Who wrote a line: the session file, the player, a person at standard input, the page.
enum class From { Session, Player, Input, Page };

// One call into a driver: a line with where it came from.
struct Step {
  unsigned long number = 0;
  session::Line line;
  std::string text;  // the line as it stood; empty for creation and destruction
  From from = From::Session;
  std::string source;       // as messages name it
  unsigned long place = 0;  // the line's number there
  double at = 0;            // when it began, in seconds since the program's start
};

// "notify NAME", "command NAME", "request NAME"; empty for a line that is no message.
std::string NameOfMessage(const session::Action& action);

// Now.
double SecondsSinceStart();

// Reads a line that is neither empty nor a comment. The paths in it start from `folder`; without
// one it may name no files. Throws std::runtime_error, whose text says what is wrong with the line.
Step ReadStep(const session::LineSplitter::Line& line, From from, const std::string& source,
              const std::filesystem::path* folder);

}  // namespace driverhost
