#pragma once

// Comments in this folder say what holds in any host. Where the framework leaves the host a choice,
// they say what "the stand-in" does: on a controller a driver may not rely on that. An operation
// whose comment names no failure fails only when memory runs out; the stand-in then throws
// std::bad_alloc.

// Marks what the host's library supplies, so that a plug-in built with hidden visibility can use
// it.
#define HOST_API __attribute__((visibility("default")))
