#pragma once

#include "standin/Observer.h"
#include "standin/Params.h"

#include <string>

namespace standin {

// A message's name and parameters, and who made it: the driver's reads are reported.
struct MessageContent {
  // Copies are of the kind of what they were made from.
  enum class Kind { Notification, Command, DriversOwn };

  // The first parameter of that name, or null. What a driver has made itself is not reported.
  const Param* ReadParam(Read::Accessor accessor, const std::string& parameter) const;

  // Reports that the driver has taken the message as a whole.
  void ReportWhole() const { Report(Read::Accessor::Whole, {}, nullptr); }

  std::string name;
  Params params;
  Kind kind;

 private:
  void Report(Read::Accessor accessor, const std::string& parameter, const Param* param) const;
};

}  // namespace standin
