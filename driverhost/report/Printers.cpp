#include "driverhost/report/Printers.h"

#include "driverhost/report/Trace.h"
#include "driverhost/text/Documents.h"
#include "driverhost/text/StepTitle.h"
#include "session/Legible.h"

#include <cstdio>
#include <string_view>

namespace driverhost {

namespace {

// The columns before the text of a record.
constexpr std::size_t s_Margin = 17;
// From this level on, a line of the host's log reports a failure.
constexpr unsigned long s_FailureLevel = 3;

using session::To;

}  // namespace

void JsonPrinter::OnStep(const Step& step) {
  if (m_Trace && !step.text.empty()) m_Console.Write(TraceOf(step) + '\n');
}

void JsonPrinter::OnRecord(const Step& step, const session::Record& record) {
  m_Console.Write((m_Trace ? TraceOf(step, record) : record.JsonOf(step.number)) + '\n');
}

void CasePrinter::OnStep(const Step& step) {
  if (!step.text.empty()) m_Console.Write(step.text + '\n');
}

void CasePrinter::OnRecord(const Step& step, const session::Record& record) {
  const bool destruction = step.number > 0 && step.text.empty();
  if (!destruction) m_Console.Write(record.Json() + '\n');
}

void TextPrinter::OnStep(const Step& step) {
  char head[16];
  std::snprintf(head, sizeof head, "%6lu  ", step.number);
  std::string line = head + StepTitle(step.line, m_Style.columns == 0);
  if (m_Style.columns > 0) line = session::Cut(line, m_Style.columns);
  m_Console.Write(m_Style.coloured ? "\033[1m" + line + "\033[0m\n" : line + '\n');
}

void TextPrinter::OnRecord(const Step&, const session::Record& record) {
  const bool fails = record.Kind() == To::Log && record.Number("level") >= s_FailureLevel;
  char kind[16];
  std::snprintf(kind, sizeof kind, "%-9s", session::NameOf(record.Kind()));
  std::string text = Text(record);
  if (m_Style.columns > 0) text = session::Cut(text, m_Style.columns - s_Margin);
  const std::string margin(s_Margin - 9, ' ');
  if (!m_Style.coloured) {
    m_Console.Write(margin + kind + text + '\n');
  } else if (fails) {
    m_Console.Write(margin + "\033[1;31m" + kind + text + "\033[0m\n");
  } else {
    m_Console.Write(margin + "\033[36m" + kind + "\033[0m" + text + '\n');
  }
}

void TextPrinter::OnLabel(unsigned long event, const std::string& label) {
  m_Labels[event] = label;
}

std::string TextPrinter::Show(std::string_view text) const {
  return session::Legible(text, m_Style.columns > 0 ? m_Style.columns - s_Margin : text.size());
}

std::string TextPrinter::Document(const session::Record& record) const {
  const auto xml = record.Text("xml");
  if (!xml) return "(none)";
  return m_Style.columns > 0 ? Show(*xml) : Indented(*xml, s_Margin);
}

std::string TextPrinter::Command(const session::Record& record) const {
  std::string text = Show(record.Text("command").value_or(""));
  for (const session::Param& param : record.Parameters()) {
    text += ' ' + Show(param.name) + '=' + Show(param.value);
  }
  return text;
}

std::string TextPrinter::Text(const session::Record& record) const {
  const auto number = [&](const char* key) {
    return std::to_string(record.Number(key).value_or(0));
  };
  const auto shown = [&](const char* key) { return Show(record.Text(key).value_or("")); };
  switch (record.Kind()) {
    case To::Variable:
      return shown("action") + ' ' + number("id") + ' ' + shown("name") + '=' + shown("value");
    case To::Event: {
      const auto label = m_Labels.find(record.Number("id").value_or(0));
      return number("id") + (label == m_Labels.end() ? "" : ' ' + Show(label->second));
    }
    case To::Rooms:
      return Command(record);
    case To::Device:
      return number("binding") + ' ' + Command(record);
    case To::Log:
      return number("level") + ' ' + shown("text");
    case To::File:
      if (!record.Number("bytes")) return shown("path") + ", gone again";
      return shown("path") + ", " + number("bytes") + " bytes" +
             (record.Number("width") ? ", JPEG " + number("width") + " x " + number("height") : "");
    case To::Ui:
    case To::Answer:
    case To::State:
      return Document(record);
  }
  return {};
}

}  // namespace driverhost
