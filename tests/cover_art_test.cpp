#include "session/Base64.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <tuple>

namespace fs = std::filesystem;

namespace {

Step Cover(const std::string& format, const std::string& bytes, const std::string& width, const std::string& height,
           const std::string& size = "") {
  return Ntf("NEW_COVERART", {{"size", size},
                              {"format", format},
                              {"height", height},
                              {"width", width},
                              {"cover_art", session::EncodeBase64(bytes)}});
}

std::string Announced(const std::string& width, const std::string& height) {
  const auto element = [](const std::string& name, const std::string& text) {
    return text.empty() ? "<" + name + "/>" : "<" + name + ">" + text + "</" + name + ">";
  };
  return "ui <NEW_COVER_ART><image_path>ipod/7/coverart.jpg</image_path>" + element("width", width) +
         element("height", height) + "</NEW_COVER_ART>";
}

// What cjpeg makes of the pixels, given as R, G, B triples.
std::string Reference(const std::string& directory, std::size_t width, std::size_t height, const std::string& rgb) {
  const std::string ppm = directory + "reference.ppm";
  const std::string jpeg = directory + "reference.jpg";
  std::ofstream(ppm, std::ios::binary) << "P6\n" << width << ' ' << height << "\n255\n" << rgb;
  EXPECT_EQ(std::system(("cjpeg -quality 75 -baseline -outfile " + jpeg + " " + ppm).c_str()), 0);
  return ReadFile(jpeg);
}

}  // namespace

TEST(CoverArt, MakesThePictureThatCjpegMakes) {
  Bench bench;
  std::mt19937 random(1);
  for (const auto& [width, height] : std::vector<std::pair<std::size_t, std::size_t>>{
           {1, 1}, {1, 17}, {3, 2}, {16, 1}, {33, 5}, {113, 97}, {600, 600}}) {
    for (const bool is565 : {true, false}) {
      std::string bytes(width * height * (is565 ? 2 : 4), '\0');
      for (char& byte : bytes) byte = static_cast<char>(random());
      std::string rgb;
      for (std::size_t i = 0; i < width * height; ++i) {
        const auto at = [&](std::size_t k) { return static_cast<unsigned char>(bytes[k]); };
        const unsigned word = is565 ? at(2 * i) + 256U * at(2 * i + 1) : 0;
        rgb += static_cast<char>(is565 ? word >> 11U << 3U : at(4 * i + 2));
        rgb += static_cast<char>(is565 ? (word >> 5U & 63U) << 2U : at(4 * i + 1));
        rgb += static_cast<char>(is565 ? (word & 31U) << 3U : at(4 * i));
      }
      const std::string w = std::to_string(width);
      const std::string h = std::to_string(height);
      SCOPED_TRACE(w + " x " + h + (is565 ? " RGB565" : " RGB888"));
      EXPECT_EQ(bench(Cover(is565 ? "RGB565" : "RGB888", bytes + "more", '0' + w, ' ' + h, "-1")),
                std::vector{Announced('0' + w, ' ' + h)});
      EXPECT_TRUE(bench.Picture() == Reference(bench.root, width, height, rgb));
    }
  }
}

TEST(CoverArt, WritesStreamsAsTheyCome) {
  const std::string outside = "log 3 ipod::OnNtfCoverArt: a JPEG size of ";
  const std::string most = std::to_string(LONG_MAX);
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"5", "\xFF\xD8xyz", nullptr},
      {" +2x", "\xFF\xD8", nullptr},
      {"0", "", nullptr},
      {"", "", nullptr},
      {"6", "was", "6"},
      {"-1", "was", "-1"},
      {"99999999999999999999", "was", most.c_str()},
  };
  for (const auto& [size, file, wrong] : cases) {
    SCOPED_TRACE(size);
    Bench bench;
    bench(Cover("JPEG", "was", "", "", "3"));
    std::vector<std::string> traffic = {Announced("w", "")};
    if (wrong) traffic.insert(traffic.begin(), outside + wrong + " is outside 0 to the 5 bytes that there are");
    EXPECT_EQ(bench(Cover("JPEG", "\xFF\xD8xyz", "w", "", size)), traffic);
    EXPECT_EQ(bench.Picture(), file);
  }
}

TEST(CoverArt, RefusesWhatIsNoPicture) {
  std::istringstream numbers(  // 33025 x 65026 x 2 and 32768 x 32768 x 4 are 4 and 0 in 32 bits
      "0 1 7 8 9 32768 33025 65026 65500 65501 2147483647 2147483648 4294967298 9223372036854775807 "
      "9223372036854775808 -1 -9223372036854775809 none");
  const std::vector<std::string> sides(std::istream_iterator<std::string>(numbers), {});
  Bench bench;
  bench(Cover("JPEG", "was", "", "", "3"));
  for (const std::string format : {"RGB565 ", "RGB888 ", "rgb565", "JPEG\n", "%s%n", ""}) {
    EXPECT_EQ(bench(Cover(format, "12345678", "1", "1", "1")),
              (std::vector{"log 3 ipod::OnNtfCoverArt: invalid format " + format, Announced("1", "1")}));
    EXPECT_EQ(bench.Picture(), "was");
  }
  for (const std::string format : {"RGB565", "RGB888"}) {
    for (const auto& width : sides) {
      for (const auto& height : sides) {
        const auto side = [](const std::string& text) { return std::strtold(text.c_str(), nullptr); };
        const long double need = side(width) * side(height) * (format == "RGB565" ? 2 : 4);
        const bool possible = side(width) >= 1 && side(height) >= 1 && side(width) <= 65500 && side(height) <= 65500;
        for (const int more : {-1, 0, 1}) {
          const long double size = need + more;
          const std::string bytes(size >= 0 && size < 3e6L ? static_cast<std::size_t>(size) : 64, 'x');
          const bool written = possible && static_cast<long double>(bytes.size()) >= need;
          SCOPED_TRACE(format + ' ' + width + " x " + height + " of " + std::to_string(bytes.size()) + " bytes");
          const auto traffic = bench(Cover(format, bytes, width, height));
          EXPECT_EQ(traffic.size(), written ? 1U : 2U);
          EXPECT_EQ(traffic.back(), Announced(width, height));
          EXPECT_EQ(bench.Picture()->substr(0, 3), written ? "\xFF\xD8\xFF" : "was");
          if (written) bench(Cover("JPEG", "was", "", "", "3"));
        }
      }
    }
  }
  EXPECT_EQ(bench(Cover("RGB888", "1234567", "2", "1")).front(),
            "log 3 ipod::Write888ToJPEGFile: 2 x 1 pixels need 8 bytes, there are 7");
  EXPECT_EQ(bench(Cover("RGB565", "12", "1", "65501")).front(),
            "log 3 ipod::Write565ToJPEGFile: 1 x 65501 pixels are outside 1 to 65500");
}

TEST(CoverArt, SurvivesEveryFileThatCannotBeWritten) {
  const std::string pixels(std::size_t{64} * 64 * 4, 'x');
  const std::tuple<const char*, std::function<void(const fs::path&)>, bool> cases[] = {
      {"no directory", [](const auto& file) { fs::remove_all(file.parent_path()); }, false},
      {"a directory in its place", [](const auto& file) { fs::create_directory(file); }, false},
      {"a link to nowhere", [](const auto& file) { fs::create_symlink("/nowhere/x", file); }, false},
      {"a pipe", [](const auto& file) { EXPECT_EQ(mkfifo(file.c_str(), 0666), 0); }, false},
      {"a full disk", [](const auto& file) { fs::create_symlink("/dev/full", file); }, true},
  };
  for (const auto& [what, prepare, opens] : cases) {
    SCOPED_TRACE(what);
    Bench bench;
    const std::string file = bench.root + "ipod/7/coverart.jpg";
    prepare(file);
    const std::string descriptors = Descriptors(), noFile = "failed to create .jpg file " + file;
    const std::string full = "ToJPEGFile: Output file write error --- out of disk space?";
    const std::tuple<const char*, std::string, std::string> formats[] = {
        {"RGB565", "565ToJPEGFile:  " + noFile, "565" + full},
        {"RGB888", "888ToJPEGFile: " + noFile, "888" + full},
        {"JPEG", "565ToJPEGFile:  " + noFile, ""},
    };
    for (const auto& [format, failsToOpen, failsToWrite] : formats) {
      const std::string& log = opens ? failsToWrite : failsToOpen;
      std::vector<std::string> traffic = {Announced("64", "64")};
      if (!log.empty()) traffic.insert(traffic.begin(), "log 3 ipod::Write" + log);
      EXPECT_EQ(bench(Cover(format, pixels, "64", "64", "9")), traffic);
    }
    EXPECT_EQ(Descriptors(), descriptors);
    fs::remove_all(file);
    fs::create_directories(fs::path(file).parent_path());
    EXPECT_EQ(bench(Cover("RGB888", pixels, "64", "64")).size(), 1U);
    EXPECT_EQ(bench.Picture()->substr(0, 3), "\xFF\xD8\xFF");
  }
}
