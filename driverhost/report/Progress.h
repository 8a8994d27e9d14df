#pragma once

#include "driverhost/run/Traffic.h"

#include <chrono>
#include <string>

namespace driverhost {

// Shows on standard error, a terminal, how far a long quiet run has come.
class Progress : public TrafficSink {
 public:
  void OnStep(const Step& step) override;
  void OnEnd(const std::string& why) override;

 private:
  using Clock = std::chrono::steady_clock;

  const Clock::time_point m_Began = Clock::now();
  Clock::time_point m_Next = m_Began + std::chrono::seconds(2);
  bool m_Told = false;
};

}  // namespace driverhost
