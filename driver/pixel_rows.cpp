#include "driver/pixel_rows.h"

#include <cstddef>

// Compilers make vector code of the loops below only for processors that can shuffle bytes, and not
// every x86-64 can. There each loop is compiled once for each kind of processor, and the loader
// picks.
#if defined(__x86_64__) && defined(__GLIBC__)
#define COPY_PER_PROCESSOR __attribute__((target_clones("avx2", "ssse3", "default")))
#else
#define COPY_PER_PROCESSOR
#endif

// Clang can call a function with such copies only from the source that defines it, so the two below
// are called by the ones in the header.
namespace {

COPY_PER_PROCESSOR
void Widen565(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) {
    const unsigned low = source[2 * i];
    const unsigned high = source[2 * i + 1];
    rgb[3 * i] = static_cast<unsigned char>(high & 0xF8U);
    rgb[3 * i + 1] = static_cast<unsigned char>((high << 5U) | ((low >> 3U) & 0x1CU));
    rgb[3 * i + 2] = static_cast<unsigned char>(low << 3U);
  }
}

COPY_PER_PROCESSOR
void Reverse888(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) {
    rgb[3 * i] = source[4 * i + 2];
    rgb[3 * i + 1] = source[4 * i + 1];
    rgb[3 * i + 2] = source[4 * i];
  }
}

}  // namespace

void Unpack565(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  Widen565(source, rgb, pixels);
}

void Unpack888(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  Reverse888(source, rgb, pixels);
}
