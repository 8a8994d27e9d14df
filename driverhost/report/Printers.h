#pragma once

#include "driverhost/io/Output.h"
#include "driverhost/run/Traffic.h"
#include "session/Record.h"

#include <cstddef>
#include <map>
#include <string>

namespace driverhost {

// Shows the traffic as one JSON object a line; as a trace, the inputs and times, too.
class JsonPrinter : public TrafficSink {
 public:
  // `console` outlives the object.
  JsonPrinter(Console& console, bool trace) : m_Console(console), m_Trace(trace) {}

  void OnStep(const Step& step) override;

  void OnRecord(const Step& step, const session::Record& record) override;

 private:
  Console& m_Console;
  const bool m_Trace;
};

// Shows the session as a case: each line as it stands, its traffic after it. The lines that are no
// steps are written by whoever reads the session. The traffic of the driver's destruction is left
// out.
class CasePrinter : public TrafficSink {
 public:
  // `console` outlives the object.
  explicit CasePrinter(Console& console) : m_Console(console) {}

  void OnStep(const Step& step) override;
  void OnRecord(const Step& step, const session::Record& record) override;

 private:
  Console& m_Console;
};

// Shows the traffic as text: a line for each step, under it one line for each record.
class TextPrinter : public TrafficSink {
 public:
  struct Style {
    std::size_t columns;  // lines are cut there; 0: whole values, documents indented
    bool coloured;
  };

  // `console` outlives the object.
  TextPrinter(Console& console, Style style) : m_Console(console), m_Style(style) {}

  void OnStep(const Step& step) override;
  void OnLabel(unsigned long event, const std::string& label) override;
  void OnRecord(const Step& step, const session::Record& record) override;

 private:
  std::string Text(const session::Record& record) const;
  std::string Document(const session::Record& record) const;
  std::string Command(const session::Record& record) const;
  std::string Show(std::string_view text) const;

  Console& m_Console;
  const Style m_Style;
  std::map<unsigned long, std::string> m_Labels;  // of events
};

}  // namespace driverhost
