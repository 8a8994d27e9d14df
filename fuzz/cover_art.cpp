#include "fuzz/Input.h"
#include "tests/bench/Bench.h"

#include <gmock/gmock.h>
#include <modp_b64.h>

#include <algorithm>
#include <cstdlib>

using testing::EndsWith;
using testing::StartsWith;

static long Number(const std::string& text) { return std::strtol(text.c_str(), nullptr, 10); }

// A format, three numbers and pixels, or any base64 text where the format's letter is small.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* formats[] = {"RGB565", "RGB888", "JPEG", "none"};
  Bench bench;
  Input input(data, size);
  const unsigned char kind = input.Byte();
  const std::string width = input.Text(), height = input.Text(), length = input.Text();
  const std::string pixels = input.Rest();
  const std::size_t format = kind % 4U;
  const bool encoded = (kind & 0x20U) == 0;
  const std::string text = encoded ? modp::b64_encode(pixels) : pixels;
  const standin::Params params = {
      {"format", formats[format]}, {"width", width}, {"height", height}, {"size", length}, {"cover_art", text}};
  const auto traffic = bench(Ntf("NEW_COVERART", params));
  EXPECT_EQ(std::count_if(traffic.begin(), traffic.end(), [](auto& line) { return line.rfind("ui ", 0) == 0; }), 1);
  if (!encoded || format == 3) return 0;

  const auto written = bench.Picture();
  const long w = Number(width), h = Number(height), bytes = static_cast<long>(pixels.size());
  const bool sides = w >= 1 && w <= 65500 && h >= 1 && h <= 65500;
  const bool good = format == 2 ? Number(length) >= 0 && Number(length) <= bytes
                                : sides && w * h * static_cast<long>(2 + 2 * format) <= bytes;
  EXPECT_EQ(good, written.has_value());
  EXPECT_EQ(good, traffic.size() == 1) << traffic[0];  // no log line
  if (!good) return 0;
  if (format == 2) {
    EXPECT_EQ(*written, pixels.substr(0, static_cast<std::size_t>(Number(length))));
  } else {
    EXPECT_THAT(*written, AllOf(StartsWith("\xFF\xD8"), EndsWith("\xFF\xD9")));
  }
  return 0;
}
