#pragma once

#include "benchmarks/Picture.h"
#include "driver/jpeg_file.h"

#include <string>
#include <vector>

// A cover as a device sends it, and as the ready rows that libjpeg takes.
struct Cover {
  bool is565;
  unsigned side;
  std::string bytes;
  std::vector<unsigned char> rgb;

  const unsigned char* Pixels() const;
  RawPicture Raw() const;
};

// With RGB565 the ready rows, too, lack the bits that the format drops.
Cover MakeCover(const Picture& square, bool is565);

// An encoder beside ours: writes the cover as a JPEG of about the same quality at `path`.
struct Encoder {
  const char* name;
  void (*write)(const Cover& cover, const std::string& path);
};

// Those that were installed when this was built.
std::vector<Encoder>& Encoders();
struct AddEncoder {
  explicit AddEncoder(const Encoder& encoder) { Encoders().push_back(encoder); }
};

void WriteFile(const std::string& path, const void* bytes, std::size_t size);
