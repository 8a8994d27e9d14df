#pragma once

#include "host/HostApi.h"

#include <cstddef>
#include <string_view>

namespace standin {

struct Utf8Sequence {
  std::size_t length;
  bool valid;
};

// The UTF-8 sequence at the start of a text, which must not be empty. Of a broken sequence it is
// the longest part that could begin a valid one, as in section 3.9 of the Unicode standard.
HOST_API Utf8Sequence ReadUtf8(std::string_view text);

}  // namespace standin
