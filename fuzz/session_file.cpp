#include "session/Case.h"
#include "session/ReadLine.h"
#include "session/WriteLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace {

// A line that is read is written to one that reads to the same.
void Read(const session::LineSplitter::Line& line) {
  session::Line read;
  try {
    read = session::ReadLine(line.text);
  } catch (const std::runtime_error&) {
    return;
  }
  const std::string title = session::TitleOf(read.action);
  EXPECT_TRUE(std::none_of(title.begin(), title.end(), [](unsigned char c) { return c < 0x20; })) << title;
  const std::string written = session::WriteLine(read);
  EXPECT_EQ(session::WriteLine(session::ReadLine(written)), written);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  session::LineSplitter lines;
  lines.Append({reinterpret_cast<const char*>(data), size});
  lines.End();
  while (const auto line = lines.Next()) {
    if (session::KindOf(*line) == session::LineKind::Step) Read(*line);
  }
  return 0;
}
