#include "driver/pixel_rows.h"

void Unpack565(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) {
    const unsigned word = source[2 * i] | (source[2 * i + 1] << 8U);
    rgb[3 * i] = static_cast<unsigned char>((word >> 8U) & 0xF8U);
    rgb[3 * i + 1] = static_cast<unsigned char>((word >> 3U) & 0xFCU);
    rgb[3 * i + 2] = static_cast<unsigned char>((word << 3U) & 0xF8U);
  }
}

void Unpack888(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) {
    rgb[3 * i] = source[4 * i + 2];
    rgb[3 * i + 1] = source[4 * i + 1];
    rgb[3 * i + 2] = source[4 * i];
  }
}
