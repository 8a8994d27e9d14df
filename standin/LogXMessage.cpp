#include "host/LogXMessage.h"

#include "standin/Services.h"

#include <cstdarg>
#include <cstdio>
#include <string>

// A line that is logged while no host calls its driver has no observer to go to, and is dropped.
void LogXMessage(unsigned int level, const char* format, ...) {
  auto* services = standin::Services::Current();
  if (!services) return;
  std::va_list arguments;
  va_start(arguments, format);
  const int size = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  if (size < 0) return;
  std::string text(static_cast<std::size_t>(size), '\0');
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  va_end(arguments);
  services->observer.OnLog(level, text);
}
