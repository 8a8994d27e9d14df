#pragma once

#include "host/HostApi.h"

// Writes one line to the host's log. `format` and what follows it are as for printf; drivers use
// only %s. Failures are logged at level 3. The stand-in drops a line that is logged outside a call
// into a driver.
HOST_API void LogXMessage(unsigned int level, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
