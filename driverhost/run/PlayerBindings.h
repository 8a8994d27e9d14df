#pragma once

#include "driverhost/run/Traffic.h"

#include <set>
#include <variant>

namespace driverhost {

// The bindings that the player has made and not broken: it gets the calls to these. What others
// bind does not count.
class PlayerBindings : public TrafficSink {
 public:
  // The host knows of a binding before the driver hears of it.
  void OnStep(const Step& step) override {
    if (step.from != From::Player) return;
    if (const auto* bind = std::get_if<session::Bind>(&step.line.action)) m_Ids.insert(bind->id);
    if (const auto* unbind = std::get_if<session::Unbind>(&step.line.action)) {
      m_Ids.erase(unbind->id);
    }
  }

  bool Hold(unsigned long id) const { return m_Ids.contains(id); }

 private:
  std::set<unsigned long> m_Ids;
};

}  // namespace driverhost
