#include "benchmarks/Cover.h"
#include "benchmarks/DriverWithSink.h"
#include "benchmarks/cases.h"
#include "host/Base64Encoder.h"

#include <benchmark/benchmark.h>
#include <jpeglib.h>
#include <modp_b64.h>

#include <filesystem>
#include <memory>

namespace {

const std::string s_Folder = "/dev/shm/mediaproxy-benchmarks/";

void WriteWithDriver(const Cover& cover, const std::string& path) {
  WriteJPEGFile(path, cover.Raw());
}

// The limit with this library: all rows are ready.
void WriteWithLibjpeg(const Cover& cover, const std::string& path) {
  std::vector<unsigned char*> rows;
  for (std::size_t y = 0; y < cover.side; ++y) {
    rows.push_back(const_cast<unsigned char*>(cover.rgb.data()) + 3 * y * cover.side);
  }
  const FilePtr file(std::fopen(path.c_str(), "wb"));
  jpeg_compress_struct writer{};
  jpeg_error_mgr errors{};
  writer.err = jpeg_std_error(&errors);
  jpeg_create_compress(&writer);
  jpeg_stdio_dest(&writer, file.get());
  writer.image_width = cover.side;
  writer.image_height = cover.side;
  writer.input_components = 3;
  writer.in_color_space = JCS_RGB;
  jpeg_set_defaults(&writer);
  jpeg_set_quality(&writer, 75, TRUE);
  jpeg_start_compress(&writer, TRUE);
  jpeg_write_scanlines(&writer, rows.data(), cover.side);
  jpeg_finish_compress(&writer);
  jpeg_destroy_compress(&writer);
}

// Some encoders have threads of their own: the whole process is timed.
void RunEncoder(benchmark::State& state, const Encoder& encoder, const Cover& cover) {
  const std::string path = s_Folder + encoder.name + ".jpg";
  for (auto _ : state) encoder.write(cover, path);
  state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(path));
}

std::string Base64(const std::string& bytes) {
  std::string text(modp_b64_encode_len(bytes.size()), '\0');
  text.resize(modp_b64_encode(text.data(), bytes.data(), bytes.size()));
  return text;
}

void RunNotification(benchmark::State& state, const Cover& cover) {
  const std::string side = std::to_string(cover.side);
  const auto message =
      standin::MakeNotification("NEW_COVERART", {{"cover_art", Base64(cover.bytes)},
                                                 {"width", side},
                                                 {"height", side},
                                                 {"format", cover.is565 ? "RGB565" : "RGB888"},
                                                 {"size", "0"}});
  DriverWithSink driver(s_Folder);
  for (auto _ : state) driver.Host().Notify(*message);
}

// Decodes, then compresses, as the handler does, so that both find the processor's caches in the
// same state. First it copies the text, as the host's interface does.
void RunLimit(benchmark::State& state, const Cover& cover) {
  const std::string text = Base64(cover.bytes);
  for (auto _ : state) {
    const std::string copy = text;
    benchmark::DoNotOptimize(copy.data());
    const std::unique_ptr<char[]> bytes(new char[modp_b64_decode_len(copy.size())]);
    modp_b64_decode(bytes.get(), copy.data(), copy.size());
    benchmark::DoNotOptimize(bytes.get());
    WriteWithLibjpeg(cover, s_Folder + "libjpeg.jpg");
  }
}

void AddCover(const std::string& picture, const Cover& cover) {
  const std::string kind =
      "/" + picture + "/" + std::to_string(cover.side) + (cover.is565 ? "/RGB565/" : "/RGB888/");
  const Encoder own[] = {{"driver", &WriteWithDriver}, {"libjpeg", &WriteWithLibjpeg}};
  std::vector<Encoder> encoders(std::begin(own), std::end(own));
  encoders.insert(encoders.end(), Encoders().begin(), Encoders().end());
  for (const Encoder& encoder : encoders) {
    benchmark::RegisterBenchmark(("cover" + kind + encoder.name).c_str(), &RunEncoder, encoder,
                                 cover)
        ->MeasureProcessCPUTime();
  }
  benchmark::RegisterBenchmark(("coverart" + kind + "driver").c_str(), &RunNotification, cover);
  benchmark::RegisterBenchmark(("coverart" + kind + "copy+base64+libjpeg").c_str(), &RunLimit,
                               cover);
}

}  // namespace

void AddCovers(const std::string& photograph) {
  std::filesystem::create_directories(s_Folder);
  const Picture photo = ReadJpeg(photograph);
  for (const unsigned side : {300U, 600U, 1500U}) {
    for (const bool is565 : {true, false}) {
      AddCover("photo", MakeCover(ScaleToSquare(photo, side), is565));
      AddCover("noise", MakeCover(Noise(side), is565));
    }
  }
}
