#include "fuzz/Bench.h"
#include "fuzz/Input.h"

#include <modp_b64.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

static long Number(const std::string& text) { return std::strtol(text.c_str(), nullptr, 10); }

// A format, three numbers and pixels, or any base64 text where the format's letter is small.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fs::path file = Bench::Root() + "ipod/7/coverart.jpg";
  static constexpr const char* formats[] = {"RGB565", "RGB888", "JPEG", "none"};
  Bench bench;
  Input input(data, size);
  const unsigned char kind = input.Byte();
  const std::string width = input.Text(), height = input.Text(), length = input.Text();
  const std::string pixels = input.Rest();
  const std::size_t format = kind % 4U;
  const bool encoded = (kind & 0x20U) == 0;
  fs::remove(file);
  const std::string text = encoded ? modp::b64_encode(pixels) : pixels;
  const standin::Params params = {
      {"format", formats[format]}, {"width", width}, {"height", height}, {"size", length}, {"cover_art", text}};
  bench.host.Notify(*standin::MakeNotification("NEW_COVERART", params));
  Require(bench.witness.documents == 1, "a picture is announced once");
  if (!encoded || format == 3) return 0;

  std::ifstream stream(file, std::ios::binary);
  const std::string written(std::istreambuf_iterator<char>(stream), {});
  const long w = Number(width), h = Number(height), bytes = static_cast<long>(pixels.size());
  const bool sides = w >= 1 && w <= 65500 && h >= 1 && h <= 65500;
  const bool good = format == 2 ? Number(length) >= 0 && Number(length) <= bytes
                                : sides && w * h * static_cast<long>(2 + 2 * format) <= bytes;
  Require(good == fs::exists(file) && good == (bench.witness.logLines == 0), "a picture is written or refused");
  if (!good) return 0;
  const bool whole =
      written.size() > 3 && written.substr(0, 2) == "\xFF\xD8" && written.substr(written.size() - 2) == "\xFF\xD9";
  Require(format == 2 ? written == pixels.substr(0, static_cast<std::size_t>(Number(length))) : whole,
          "a picture is whole");
  return 0;
}
