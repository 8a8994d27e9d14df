#pragma once

#include <stdexcept>
#include <string>

namespace mpdplayer {

enum class ArtFormat { Jpeg, Rgb565, Rgb888 };

struct PictureError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A picture as the driver takes it.
struct Picture {
  int width = 0;
  int height = 0;
  std::string bytes;
  bool icon = false;  // the file's picture is too small for a cover
};

// Decodes JPEG, PNG, GIF, BMP, TIFF and, where there is a loader for it, WebP, turns it as its EXIF
// says, and makes the longer side fit. A JPEG that fits, stands upright and is grey or RGB stays as
// it is when JPEG is wanted. Pictures of more than 32 million pixels, and those that take more than
// seconds to decode, are refused. Throws PictureError.
Picture MakePicture(const std::string& file, ArtFormat format, int longestSide);

}  // namespace mpdplayer
