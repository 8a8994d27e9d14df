#include "driverhost/run/Traffic.h"

namespace driverhost {

void Traffic::OnStep(const Step& step) {
  for (TrafficSink* sink : m_Sinks) sink->OnStep(step);
}

void Traffic::OnRecord(const Step& step, const session::Record& record) {
  ++m_Counts[static_cast<std::size_t>(record.Kind())];
  for (TrafficSink* sink : m_Sinks) sink->OnRecord(step, record);
}

void Traffic::OnRegistered(const std::vector<std::string>& registered) {
  for (TrafficSink* sink : m_Sinks) sink->OnRegistered(registered);
}

void Traffic::OnLabel(unsigned long event, const std::string& label) {
  for (TrafficSink* sink : m_Sinks) sink->OnLabel(event, label);
}

void Traffic::OnHint(const Step& step, const std::string& text) {
  for (TrafficSink* sink : m_Sinks) sink->OnHint(step, text);
}

void Traffic::OnPrinted(const Step& step, const std::string& line) {
  for (TrafficSink* sink : m_Sinks) sink->OnPrinted(step, line);
}

void Traffic::OnEnd(const std::string& why) {
  for (TrafficSink* sink : m_Sinks) sink->OnEnd(why);
}

void Traffic::OnStepEnd(const Step& step, const Reads& reads) {
  for (TrafficSink* sink : m_Sinks) sink->OnStepEnd(step, reads);
}

}  // namespace driverhost
