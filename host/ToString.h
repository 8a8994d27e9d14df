#pragma once

#include "host/HostApi.h"

#include <string>

namespace tq {

// The decimal text of `n`, without a sign or leading zeros.
HOST_API std::string ToString(unsigned long n);

}  // namespace tq
