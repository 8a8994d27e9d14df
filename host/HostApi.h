#pragma once

// Marks what the host's library supplies, so that a plug-in built with hidden visibility can use
// it.
#define HOST_API __attribute__((visibility("default")))
