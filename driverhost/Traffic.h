#pragma once

#include "driverhost/Record.h"
#include "driverhost/Step.h"
#include "standin/Observer.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace driverhost {

// Receives the traffic of a driver. Everything is borrowed for the call.
class TrafficSink {
 public:
  virtual ~TrafficSink() = default;

  // What comes from now on belongs to this step.
  virtual void OnStep(unsigned long /*number*/, const Step&) {}

  // The step is over: its files are written and closed.
  virtual void OnStepEnd() {}

  virtual void OnRecord(const Record&) {}

  // The handler of a notification has read a parameter, which the message may lack.
  virtual void OnRead(const std::string& /*parameter*/, bool /*has*/) {}
};

// Makes records of what comes out of a driver, counts them and hands them to its sinks, in the
// order in which these were added.
class Traffic : public standin::Observer {
 public:
  // `sink` is borrowed and outlives the traffic.
  void Add(TrafficSink& sink) { m_Sinks.push_back(&sink); }

  // How many records of a kind there were, and of all kinds.
  std::size_t Count(Record::To to) const { return m_Counts.at(static_cast<std::size_t>(to)); }
  std::size_t Total() const;

  void BeginStep(unsigned long number, const Step& step);
  void EndStep();

  // The driver has written a file: its path below `imageRoot`.
  void OnFile(const std::string& imageRoot, const std::string& path);

  // What the driver has done that no driver may, since the last call; mostly empty.
  std::string TakeMisuse() { return std::exchange(m_Misuse, {}); }

  void OnVariable(Change change, unsigned long id, const std::string& name,
                  const std::string& value) override;
  void OnEvent(unsigned long id) override;
  void OnUi(const std::string& xml) override;
  void OnRooms(const std::string& command, const standin::Params& params) override;
  void OnDevice(unsigned long binding, const std::string& command, const standin::Params& params,
                const ICmdReturn* ret) override;
  void OnAnswer(const std::string& request, const std::string* xml) override;
  void OnState(const std::string* xml) override;
  void OnLog(unsigned int level, const std::string& text) override;
  void OnMisuse(const std::string& what) override { m_Misuse = what; }
  void OnRead(const std::string& notification, const std::string& parameter, Accessor accessor,
              const std::string* value) override;

 private:
  void Send(const Record& record);

  std::vector<TrafficSink*> m_Sinks;
  std::string m_Misuse;
  std::array<std::size_t, Record::s_Kinds> m_Counts{};
};

}  // namespace driverhost
