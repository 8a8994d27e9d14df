#pragma once

#include "driver/pixel_rows.h"

#include <cstdio>
#include <memory>
#include <string>

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// libjpeg's JPEG_MAX_DIMENSION.
constexpr long s_MaxJPEGSide = 65500;

// Requires: width and height from 1 to s_MaxJPEGSide, and pixels for all of them.
struct RawPicture {
  const unsigned char* pixels;
  PixelLayout layout;
  unsigned width;
  unsigned height;
};

// Compresses the picture to a baseline JPEG of quality 75 at `path`, which is overwritten. Returns
// false when the file cannot be opened; then nothing is written. Where libjpeg fails, `fault` gets
// its message and the file is left as far as it came.
bool WriteJPEGFile(const std::string& path, const RawPicture& picture, std::string& fault);
