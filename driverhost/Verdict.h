#pragma once

#include "driverhost/Output.h"

#include <string>
#include <utility>

namespace driverhost {

enum ExitStatus : int { s_Ran = 0, s_Failed = 1, s_Wrong = 2 };

// What went wrong, told on standard error as it happens. The first failure decides the status.
class Verdict {
 public:
  // `subject` is what messages about the driver begin with. `output` is flushed before anything is
  // told; it is borrowed and outlives the object.
  Verdict(std::string subject, Output& output) : m_Subject(std::move(subject)), m_Output(output) {}

  // Tells a whole message.
  void Fail(ExitStatus status, const std::string& what);

  // Tells what the driver did.
  void FailDriver(const std::string& what) { Fail(s_Failed, m_Subject + ": " + what); }

  int Status() const { return m_Status; }

 private:
  const std::string m_Subject;
  Output& m_Output;
  int m_Status = s_Ran;
};

}  // namespace driverhost
