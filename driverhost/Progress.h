#pragma once

#include "driverhost/Traffic.h"

#include <chrono>

namespace driverhost {

// Shows on standard error, a terminal, how far a long quiet run has come.
class Progress : public TrafficSink {
 public:
  ~Progress() override;

  void OnStep(unsigned long number, const Step& step) override;

 private:
  using Clock = std::chrono::steady_clock;

  const Clock::time_point m_Began = Clock::now();
  Clock::time_point m_Next = m_Began + std::chrono::seconds(2);
  bool m_Told = false;
};

}  // namespace driverhost
