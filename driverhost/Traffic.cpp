#include "driverhost/Traffic.h"

#include "driverhost/FileContent.h"
#include "driverhost/JpegSize.h"

#include <exception>
#include <numeric>

namespace driverhost {

namespace {

Record::Value TextOrNull(const std::string* text) {
  if (text) return *text;
  return nullptr;
}

}  // namespace

std::size_t Traffic::Total() const {
  return std::accumulate(m_Counts.begin(), m_Counts.end(), std::size_t{0});
}

void Traffic::BeginStep(unsigned long number, const Step& step) {
  for (TrafficSink* sink : m_Sinks) sink->OnStep(number, step);
}

void Traffic::EndStep() {
  for (TrafficSink* sink : m_Sinks) sink->OnStepEnd();
}

void Traffic::Send(const Record& record) {
  ++m_Counts[static_cast<std::size_t>(record.to)];
  for (TrafficSink* sink : m_Sinks) sink->OnRecord(record);
}

// A file that is gone again has no size.
void Traffic::OnFile(const std::string& imageRoot, const std::string& path) {
  std::string content;
  try {
    content = ReadFile(imageRoot + path);
  } catch (const std::exception&) {
    return Send({Record::To::File, {{"path", path}}});
  }
  Record record{Record::To::File, {{"path", path}, {"bytes", content.size()}}};
  if (const auto size = ReadJpegSize(content)) {
    record.fields.push_back({"width", std::size_t{size->width}});
    record.fields.push_back({"height", std::size_t{size->height}});
  }
  Send(record);
}

void Traffic::OnVariable(Change change, unsigned long id, const std::string& name,
                         const std::string& value) {
  const char* action = change == Change::Added     ? "added"
                       : change == Change::Changed ? "changed"
                                                   : "removed";
  Send({Record::To::Variable, {{"action", action}, {"id", id}, {"name", name}, {"value", value}}});
}

void Traffic::OnEvent(unsigned long id) { Send({Record::To::Event, {{"id", id}}}); }

void Traffic::OnUi(const std::string& xml) { Send({Record::To::Ui, {{"xml", xml}}}); }

void Traffic::OnRooms(const std::string& command, const standin::Params& params) {
  Send({Record::To::Rooms, {{"command", command}, {"params", &params}}});
}

void Traffic::OnDevice(unsigned long binding, const std::string& command,
                       const standin::Params& params, const ICmdReturn*) {
  Send({Record::To::Device, {{"binding", binding}, {"command", command}, {"params", &params}}});
}

void Traffic::OnAnswer(const std::string& request, const std::string* xml) {
  Send({Record::To::Answer, {{"request", request}, {"xml", TextOrNull(xml)}}});
}

void Traffic::OnState(const std::string* xml) {
  Send({Record::To::State, {{"xml", TextOrNull(xml)}}});
}

void Traffic::OnLog(unsigned int level, const std::string& text) {
  Send({Record::To::Log, {{"level", std::size_t{level}}, {"text", text}}});
}

void Traffic::OnRead(const std::string&, const std::string& parameter, Accessor,
                     const std::string* value) {
  for (TrafficSink* sink : m_Sinks) sink->OnRead(parameter, value != nullptr);
}

}  // namespace driverhost
