#pragma once

#include "driverhost/Output.h"

#include <string>

namespace driverhost {

enum ExitStatus : int { s_Ran = 0, s_Failed = 1, s_Wrong = 2 };

// What went wrong, told on standard error as it happens. The first failure decides the status.
class Verdict {
 public:
  // `output` is flushed before anything is told; it is borrowed and outlives the object.
  explicit Verdict(Output& output) : m_Output(output) {}

  void Fail(ExitStatus status, const std::string& what);

  int Status() const { return m_Status; }

 private:
  Output& m_Output;
  int m_Status = s_Ran;
};

}  // namespace driverhost
