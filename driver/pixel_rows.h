#pragma once

#include <cstddef>

// Fills `rgb` with one R, G, B byte triple for each of `pixels` pixels of `source`. The two must
// not overlap.
using UnpackRow = void (*)(const unsigned char* source, unsigned char* rgb, std::size_t pixels);

// Little-endian words of 5 bits red, 6 green, 5 blue from the top; the low bits of the wider
// channels are zero, so that white is (248, 252, 248).
void Unpack565(const unsigned char* source, unsigned char* rgb, std::size_t pixels);

// Bytes blue, green, red and one without a meaning.
void Unpack888(const unsigned char* source, unsigned char* rgb, std::size_t pixels);

// Raw pixels as they come: rows without gaps, the top row first.
struct PixelLayout {
  std::size_t bytesPerPixel;
  UnpackRow unpack;
};
