#pragma once

#include "driverhost/run/Step.h"
#include "session/Record.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace driverhost {

// A parameter that a handler has read in a step, and whether its message has it.
struct Read {
  std::string name;
  bool has;
};
using Reads = std::vector<Read>;

// Receives what a driver does. Everything is borrowed for the call.
class TrafficSink {
 public:
  virtual ~TrafficSink() = default;

  // What comes from now on belongs to this step.
  virtual void OnStep(const Step&) {}

  virtual void OnRecord(const Step&, const session::Record&) {}

  // What the driver has registered by now, as standin::Host::Registered gives it.
  virtual void OnRegistered(const std::vector<std::string>&) {}

  // What the driver calls an event, before its first record.
  virtual void OnLabel(unsigned long /*event*/, const std::string& /*label*/) {}

  // What is legal in the step, but probably a mistake, as the driver process saw it.
  virtual void OnHint(const Step&, const std::string& /*text*/) {}

  // The step is over: its files are written and closed.
  virtual void OnStepEnd(const Step&, const Reads&) {}

  // A line that the driver has printed, made legible.
  virtual void OnPrinted(const Step&, const std::string& /*line*/) {}

  // The driver is gone: no more comes. `why` is empty when it ended as it should.
  virtual void OnEnd(const std::string& /*why*/) {}
};

// Counts the records of a driver and hands all to its sinks, in the order in which these were
// added.
class Traffic : public TrafficSink {
 public:
  // `sink` is borrowed and outlives the object.
  void Add(TrafficSink& sink) { m_Sinks.push_back(&sink); }

  // How many records of a kind there were.
  std::size_t Count(session::To kind) const { return m_Counts.at(static_cast<std::size_t>(kind)); }

  void OnStep(const Step& step) override;
  void OnRecord(const Step& step, const session::Record& record) override;
  void OnRegistered(const std::vector<std::string>& registered) override;
  void OnLabel(unsigned long event, const std::string& label) override;
  void OnHint(const Step& step, const std::string& text) override;
  void OnStepEnd(const Step& step, const Reads& reads) override;
  void OnPrinted(const Step& step, const std::string& line) override;
  void OnEnd(const std::string& why) override;

 private:
  std::vector<TrafficSink*> m_Sinks;
  std::array<std::size_t, session::s_Kinds> m_Counts{};
};

}  // namespace driverhost
