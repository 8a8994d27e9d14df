#pragma once

#include "driverhost/Output.h"

#include <string>
#include <utility>

namespace driverhost {

enum ExitStatus : int { s_Ran = 0, s_Failed = 1, s_Wrong = 2 };

// Reports failures on standard error as they happen. The first one decides the exit status.
class Verdict {
 public:
  // `subject` is what messages about the driver begin with. `output` is flushed before each
  // message; it is borrowed and outlives the object.
  Verdict(std::string subject, Output& output) : m_Subject(std::move(subject)), m_Output(output) {}

  // Prints the whole message.
  void Fail(ExitStatus status, const std::string& what);

  // Prints what the driver did.
  void FailDriver(const std::string& what) { Fail(s_Failed, m_Subject + ": " + what); }

  int Status() const { return m_Status; }

 private:
  const std::string m_Subject;
  Output& m_Output;
  int m_Status = s_Ran;
};

}  // namespace driverhost
