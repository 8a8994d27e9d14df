#include "driverhost/Session.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Directory directory;
  static const std::string file = directory.path + "session.ndjson";
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  driverhost::Session session(file);
  try {
    while (const auto step = session.Next()) {
      EXPECT_EQ(step->line, session.Lines());
      EXPECT_TRUE(std::none_of(step->title.begin(), step->title.end(), [](unsigned char c) { return c < 0x20; }))
          << step->title;
    }
  } catch (const driverhost::SessionError& error) {
    const std::string where = file + ':' + std::to_string(session.Lines()) + ": ";
    EXPECT_EQ(std::string(error.what()).rfind(where, 0), 0U) << error.what();
  }
  EXPECT_TRUE(standin::GetLedger().Empty());
  return 0;
}
