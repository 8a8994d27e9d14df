#pragma once

#include "driverhost/io/Output.h"

#include <string>
#include <utility>

namespace driverhost {

// The program's exit statuses.
enum ExitStatus : int { s_AllWell = 0, s_DriverFailed = 1, s_InputWrong = 2 };

// Tells failures as they happen. The first one decides the exit status.
class Verdict {
 public:
  // `subject` is what messages about the driver begin with. `console` is borrowed and outlives the
  // object.
  Verdict(std::string subject, Console& console)
      : m_Subject(std::move(subject)), m_Console(console) {}

  // Tells the whole message.
  void Fail(ExitStatus status, const std::string& what) {
    m_Console.Tell(what);
    if (m_Status == s_AllWell) m_Status = status;
  }

  // Tells what the driver did.
  void FailDriver(const std::string& what) { Fail(s_DriverFailed, m_Subject + ": " + what); }

  ExitStatus Status() const { return m_Status; }

 private:
  const std::string m_Subject;
  Console& m_Console;
  ExitStatus m_Status = s_AllWell;
};

}  // namespace driverhost
