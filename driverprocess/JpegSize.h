#pragma once

#include <optional>
#include <string_view>

namespace driverprocess {

struct JpegSize {
  unsigned width;
  unsigned height;
};

// The size that a JPEG file's frame header states; nothing when there is none.
std::optional<JpegSize> ReadJpegSize(std::string_view file);

}  // namespace driverprocess
