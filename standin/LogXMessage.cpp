#include "host/LogXMessage.h"

#include "standin/Operation.h"
#include "standin/Services.h"

#include <cstdarg>
#include <cstdio>
#include <string>

// A line that is logged while there is no host has no observer to go to, and is dropped.
void LogXMessage(unsigned int level, const char* format, ...) {
  standin::CheckCaller("LogXMessage");
  std::va_list arguments;
  va_start(arguments, format);
  const int size = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  if (size < 0) return;
  std::string text(static_cast<std::size_t>(size), '\0');
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  va_end(arguments);
  const standin::Lock lock;
  auto* const own = standin::Call::Current();
  if (auto* const services = own ? own : standin::Services::Newest()) {
    services->observer.OnLog(level, text);
  }
}
