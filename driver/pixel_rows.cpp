#include "driver/pixel_rows.h"

#include <cstddef>

// Compilers make vector code of the loops below only for processors that can shuffle bytes. Not
// every x86-64 and not every 32-bit ARM can: there each loop is compiled once for each kind of
// processor (for ARM we write out the copies), and the loader picks one.
#if defined(__x86_64__) && defined(__GLIBC__)
#define COPY_PER_PROCESSOR __attribute__((target_clones("avx2", "ssse3", "default")))
#elif defined(__ARM_PCS_VFP) && !defined(__ARM_NEON) && defined(__GLIBC__) && !defined(__clang__)
#include <sys/auxv.h>
#define COPY_PER_PROCESSOR __attribute__((always_inline)) inline
#define COPY_FOR_NEON __attribute__((target("fpu=neon")))
#else
#define COPY_PER_PROCESSOR
#endif

// Clang can call a function with such copies only from the source that defines it, so the functions
// of the header call the two below.
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

#ifdef COPY_FOR_NEON

COPY_FOR_NEON
void Widen565Neon(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  Widen565(source, rgb, pixels);
}

COPY_FOR_NEON
void Reverse888Neon(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  Reverse888(source, rgb, pixels);
}

// `processor` is the kernel's AT_HWCAP.
extern "C" UnpackRow Pick565(unsigned long processor) {
  return (processor & HWCAP_ARM_NEON) != 0 ? &Widen565Neon : &Widen565;
}

extern "C" UnpackRow Pick888(unsigned long processor) {
  return (processor & HWCAP_ARM_NEON) != 0 ? &Reverse888Neon : &Reverse888;
}

}  // namespace

__attribute__((ifunc("Pick565"))) void Unpack565(const unsigned char*, unsigned char*, std::size_t);
__attribute__((ifunc("Pick888"))) void Unpack888(const unsigned char*, unsigned char*, std::size_t);

#else

}  // namespace

void Unpack565(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  Widen565(source, rgb, pixels);
}

void Unpack888(const unsigned char* source, unsigned char* rgb, std::size_t pixels) {
  Reverse888(source, rgb, pixels);
}

#endif
