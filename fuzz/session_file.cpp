#include "driverhost/Session.h"
#include "fuzz/Bench.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string file = Bench::Root() + "session.ndjson";
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  driverhost::Session session(file);
  try {
    while (const auto step = session.Next()) {
      Require(step->line == session.Lines(), "a step knows its line");
      Require(std::none_of(step->title.begin(), step->title.end(), [](unsigned char c) { return c < 0x20; }),
              "a title is one legible line", step->title);
    }
  } catch (const driverhost::SessionError& error) {
    const std::string where = file + ':' + std::to_string(session.Lines()) + ": ";
    Require(std::string(error.what()).rfind(where, 0) == 0, "a wrong line is reported with its number", error.what());
  }
  Require(standin::GetLedger().Empty(), "nothing is left of a session");
  return 0;
}
