#include "host/LogXMessage.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "standin/Services.h"

// A line that is written outside any call of a host into its driver is nobody's and is dropped.
void LogXMessage(unsigned int level, const char* format, ...) {
  auto* services = standin::Services::Current();
  if (!services) return;
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list again;
  va_copy(again, arguments);
  const int size = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(size < 0 ? 0 : static_cast<std::size_t>(size), '\0');
  if (size > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  va_end(arguments);
  services->observer.OnLog(level, text);
}
