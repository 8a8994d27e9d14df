#include "benchmarks/Cover.h"

const unsigned char* Cover::Pixels() const {
  return reinterpret_cast<const unsigned char*>(bytes.data());
}

RawPicture Cover::Raw() const {
  const PixelLayout layout = is565 ? PixelLayout{2, &Unpack565} : PixelLayout{4, &Unpack888};
  return {Pixels(), layout, side, side};
}

Cover MakeCover(const Picture& square, bool is565) {
  Cover cover{is565, square.width, {}, std::vector<unsigned char>(square.rgb.size())};
  for (std::size_t i = 0; i < square.rgb.size(); i += 3) {
    const unsigned red = square.rgb[i];
    const unsigned green = square.rgb[i + 1];
    const unsigned blue = square.rgb[i + 2];
    if (is565) {
      const unsigned word = (red >> 3U << 11U) | (green >> 2U << 5U) | blue >> 3U;
      cover.bytes += {static_cast<char>(word), static_cast<char>(word >> 8U)};
    } else {
      cover.bytes += {static_cast<char>(blue), static_cast<char>(green), static_cast<char>(red), 0};
    }
  }
  const RawPicture raw = cover.Raw();
  raw.layout.unpack(raw.pixels, cover.rgb.data(), std::size_t{cover.side} * cover.side);
  return cover;
}

std::vector<Encoder>& Encoders() {
  static std::vector<Encoder> encoders;
  return encoders;
}

void WriteFile(const std::string& path, const void* bytes, std::size_t size) {
  const FilePtr file(std::fopen(path.c_str(), "wb"));
  std::fwrite(bytes, 1, size, file.get());
}
