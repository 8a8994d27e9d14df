#pragma once

#include <string>

#include "host/HostApi.h"

namespace tq {

// The decimal text of `n`.
HOST_API std::string ToString(unsigned long n);

}  // namespace tq
