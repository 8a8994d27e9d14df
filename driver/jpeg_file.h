#pragma once

#include "driver/pixel_rows.h"

#include <cstdio>
#include <memory>
#include <string>

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// Creates or empties the file. Null when that fails, and for a named pipe: opening one waits for a
// reader, and writing to one whose reader is gone raises a signal that ends the process.
FilePtr CreateFile(const std::string& path);

// libjpeg's JPEG_MAX_DIMENSION.
constexpr long s_MaxJPEGSide = 65500;

// Borrows its pixels. Requires: width and height from 1 to s_MaxJPEGSide, and pixels for all of it.
struct RawPicture {
  const unsigned char* pixels;
  PixelLayout layout;
  unsigned width;
  unsigned height;
};

struct JPEGResult {
  enum Outcome { Written, NotOpened, Failed } outcome;
  std::string fault;  // libjpeg's own message, when it failed
};

// Compresses the picture to a baseline JPEG of quality 75 at `path`, which is overwritten. When the
// file cannot be opened, nothing is written; when libjpeg fails, the file holds what was written
// until then.
JPEGResult WriteJPEGFile(const std::string& path, const RawPicture& picture);
