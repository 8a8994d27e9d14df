#pragma once

#include "driverhost/Output.h"
#include "driverhost/Traffic.h"

#include <cstddef>
#include <string>

namespace driverhost {

// Shows the traffic as one JSON object a line.
class JsonPrinter : public TrafficSink {
 public:
  // `output` outlives the object.
  explicit JsonPrinter(Output& output) : m_Output(output) {}

  void OnStep(unsigned long number, const Step& step) override;
  void OnRecord(const Record& record) override;

 private:
  Output& m_Output;
  unsigned long m_Step = 0;
};

// Shows the session as a case: each line as it stands, its traffic after it. The lines that are no
// steps are written by whoever reads the session. The traffic of the driver's destruction is left
// out.
class CasePrinter : public TrafficSink {
 public:
  // `output` outlives the object.
  explicit CasePrinter(Output& output) : m_Output(output) {}

  void OnStep(unsigned long number, const Step& step) override;
  void OnRecord(const Record& record) override;

 private:
  Output& m_Output;
  bool m_Destroyed = false;
};

// Shows the traffic as text: a line for each step, under it one line for each record.
class TextPrinter : public TrafficSink {
 public:
  struct Style {
    std::size_t columns;  // lines are cut there; 0: whole values, documents indented
    bool coloured;
  };

  // `output` outlives the object.
  TextPrinter(Output& output, Style style) : m_Output(output), m_Style(style) {}

  void OnStep(unsigned long number, const Step& step) override;
  void OnRecord(const Record& record) override;

 private:
  std::string Text(const Record& record) const;
  std::string Document(const Record& record) const;
  std::string Command(const Record& record) const;
  std::string Show(std::string_view text) const;

  Output& m_Output;
  const Style m_Style;
};

}  // namespace driverhost
