#include "driverhost/report/Progress.h"

#include <cstdio>

namespace driverhost {

// Each line of progress is overwritten by the next one; the last one is erased.
void Progress::OnEnd(const std::string& /*why*/) {
  if (m_Told) std::fputs("\r\033[K", stderr);
}

void Progress::OnStep(const Step& step) {
  if (step.number % 256 != 0) return;
  const auto now = Clock::now();
  if (now < m_Next) return;
  m_Next = now + std::chrono::milliseconds(500);
  m_Told = true;
  std::fprintf(stderr, "\r%lu lines, %.0f s", step.number,
               std::chrono::duration<double>(now - m_Began).count());
}

}  // namespace driverhost
