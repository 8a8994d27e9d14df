#include "driverhost/Verdict.h"

#include <cstdio>

namespace driverhost {

void Verdict::Fail(ExitStatus status, const std::string& what) {
  m_Output.Flush();
  std::fprintf(stderr, "%s\n", what.c_str());
  if (m_Status == s_Ran) m_Status = status;
}

}  // namespace driverhost
