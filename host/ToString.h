#pragma once

#include "host/HostApi.h"

#include <string>

namespace tq {

// The decimal text of `n`.
HOST_API std::string ToString(unsigned long n);

}  // namespace tq
