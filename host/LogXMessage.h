#pragma once

#include "host/HostApi.h"

// Writes one line to the host's log. `format` and what follows it are as for printf; drivers use %s
// only. Failures are logged at level 3.
HOST_API void LogXMessage(unsigned int level, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
