#pragma once

#include <string>
#include <vector>

// Rows of R, G, B triples without gaps.
struct Picture {
  unsigned width;
  unsigned height;
  std::vector<unsigned char> rgb;
};

// Throws std::runtime_error when the file cannot be opened.
Picture ReadJpeg(const std::string& path);

// The middle of a picture, scaled down to a square by averages.
Picture ScaleToSquare(const Picture& picture, unsigned side);

// The same on every run.
Picture Noise(unsigned side);
