#include "benchmarks/Picture.h"

#include "driver/jpeg_file.h"

#include <jpeglib.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>
#include <stdexcept>

Picture ReadJpeg(const std::string& path) {
  const FilePtr file(std::fopen(path.c_str(), "rb"));
  if (!file) throw std::runtime_error("cannot open " + path);
  jpeg_decompress_struct reader{};
  jpeg_error_mgr errors{};
  reader.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&reader);
  jpeg_stdio_src(&reader, file.get());
  jpeg_read_header(&reader, TRUE);
  reader.out_color_space = JCS_RGB;
  jpeg_start_decompress(&reader);
  Picture picture{reader.output_width, reader.output_height, {}};
  const std::size_t rowLength = std::size_t{3} * picture.width;
  picture.rgb.resize(rowLength * picture.height);
  while (reader.output_scanline < reader.output_height) {
    unsigned char* row = picture.rgb.data() + reader.output_scanline * rowLength;
    jpeg_read_scanlines(&reader, &row, 1);
  }
  jpeg_finish_decompress(&reader);
  jpeg_destroy_decompress(&reader);
  return picture;
}

namespace {

// Of the pixels from (left, top) to before (right, bottom).
unsigned char Average(const Picture& picture, unsigned left, unsigned top, unsigned right,
                      unsigned bottom, unsigned channel) {
  std::size_t sum = 0;
  for (unsigned y = top; y < bottom; ++y) {
    for (unsigned x = left; x < right; ++x) {
      sum += picture.rgb[3 * (std::size_t{y} * picture.width + x) + channel];
    }
  }
  return static_cast<unsigned char>(sum / ((right - left) * std::size_t{bottom - top}));
}

}  // namespace

Picture ScaleToSquare(const Picture& picture, unsigned side) {
  const unsigned from = std::min(picture.width, picture.height);
  if (from < side) throw std::runtime_error("the picture is too small");
  const unsigned left = (picture.width - from) / 2;
  const unsigned top = (picture.height - from) / 2;
  const auto edge = [=](unsigned i) { return i * from / side; };
  Picture square{side, side, {}};
  square.rgb.reserve(std::size_t{3} * side * side);
  for (unsigned y = 0; y < side; ++y) {
    for (unsigned x = 0; x < side; ++x) {
      for (unsigned channel = 0; channel < 3; ++channel) {
        square.rgb.push_back(Average(picture, left + edge(x), top + edge(y), left + edge(x + 1),
                                     top + edge(y + 1), channel));
      }
    }
  }
  return square;
}

Picture Noise(unsigned side) {
  std::mt19937 random(1);
  Picture picture{side, side, std::vector<unsigned char>(std::size_t{3} * side * side)};
  for (unsigned char& byte : picture.rgb) byte = static_cast<unsigned char>(random());
  return picture;
}
