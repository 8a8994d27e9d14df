#include "driverprocess/JpegSize.h"

namespace driverprocess {

namespace {

unsigned Byte(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

unsigned Word(std::string_view bytes, std::size_t at) {
  return Byte(bytes, at) << 8U | Byte(bytes, at + 1);
}

// SOF0 to SOF15; three codes among them are tables.
bool IsFrameHeader(unsigned marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

}  // namespace

std::optional<JpegSize> ReadJpegSize(std::string_view file) {
  if (file.size() < 2 || Word(file, 0) != 0xFFD8) return std::nullopt;
  file.remove_prefix(2);
  // Segments: FF, marker, a length of two bytes that counts itself, and for a frame header one byte
  // before height and width.
  while (file.size() >= 9 && Byte(file, 0) == 0xFF) {
    const unsigned marker = Byte(file, 1);
    if (IsFrameHeader(marker)) return JpegSize{Word(file, 7), Word(file, 5)};
    const bool filling = marker == 0xFF;
    const std::size_t length = filling ? 1 : 2 + std::size_t{Word(file, 2)};
    if (length > file.size()) break;
    file.remove_prefix(length);
  }
  return std::nullopt;
}

}  // namespace driverprocess
