#include "driverhost/Printers.h"

#include "driverhost/Documents.h"
#include "driverhost/Legible.h"
#include "driverhost/StepTitle.h"

#include <cstdio>
#include <string_view>
#include <variant>

namespace driverhost {

namespace {

// The columns before the text of a record.
constexpr std::size_t s_Margin = 17;
// From this level on, a line of the host's log reports a failure.
constexpr unsigned long s_FailureLevel = 3;

struct Colours {
  const char* kind;
  const char* end;
};

}  // namespace

void JsonPrinter::OnStep(unsigned long number, const Step&) { m_Step = number; }

void JsonPrinter::OnRecord(const Record& record) {
  m_Output.Write(JsonText(record, &m_Step) + '\n');
}

void CasePrinter::OnStep(unsigned long number, const Step& step) {
  if (!step.text.empty()) m_Output.Write(std::string(step.text) + '\n');
  m_Destroyed = number > 0 && step.text.empty();
}

void CasePrinter::OnRecord(const Record& record) {
  if (!m_Destroyed) m_Output.Write(JsonText(record) + '\n');
}

void TextPrinter::OnStep(unsigned long number, const Step& step) {
  const std::string title =
      step.text.empty() ? step.title : StepTitle(step.text, m_Style.columns == 0);
  char head[16];
  std::snprintf(head, sizeof head, "%6lu  ", number);
  std::string line = head + title;
  if (m_Style.columns > 0) line = Cut(line, m_Style.columns);
  m_Output.Write(m_Style.coloured ? "\033[1m" + line + "\033[0m\n" : line + '\n');
}

void TextPrinter::OnRecord(const Record& record) {
  const bool fails = record.to == Record::To::Log && record.Number("level") >= s_FailureLevel;
  char kind[16];
  std::snprintf(kind, sizeof kind, "%-9s", KindName(record.to));
  std::string text = Text(record);
  if (m_Style.columns > 0) text = Cut(text, m_Style.columns - s_Margin);
  const std::string margin(s_Margin - 9, ' ');
  if (!m_Style.coloured) {
    m_Output.Write(margin + kind + text + '\n');
  } else if (fails) {
    m_Output.Write(margin + "\033[1;31m" + kind + text + "\033[0m\n");
  } else {
    m_Output.Write(margin + "\033[36m" + kind + "\033[0m" + text + '\n');
  }
}

std::string TextPrinter::Show(std::string_view text) const {
  return Legible(text, m_Style.columns > 0 ? m_Style.columns - s_Margin : text.size());
}

std::string TextPrinter::Document(const Record& record) const {
  const auto* xml = std::get_if<std::string_view>(&record["xml"]);
  if (!xml) return "(none)";
  return m_Style.columns > 0 ? Show(*xml) : Indented(*xml, s_Margin);
}

std::string TextPrinter::Command(const Record& record) const {
  std::string text = Show(record.Text("command"));
  for (const standin::Param& param : *std::get<const standin::Params*>(record["params"])) {
    text += ' ' + Show(param.name) + '=' + Show(param.value);
  }
  return text;
}

std::string TextPrinter::Text(const Record& record) const {
  const auto number = [&](const char* key) { return std::to_string(record.Number(key)); };
  switch (record.to) {
    case Record::To::Variable:
      return std::string(record.Text("action")) + ' ' + number("id") + ' ' +
             Show(record.Text("name")) + '=' + Show(record.Text("value"));
    case Record::To::Event:
      return number("id");
    case Record::To::Rooms:
      return Command(record);
    case Record::To::Device:
      return number("binding") + ' ' + Command(record);
    case Record::To::Log:
      return number("level") + ' ' + Show(record.Text("text"));
    case Record::To::File: {
      std::string text = Show(record.Text("path"));
      if (std::holds_alternative<std::nullptr_t>(record["bytes"])) return text + ", gone again";
      text += ", " + number("bytes") + " bytes";
      if (std::holds_alternative<std::nullptr_t>(record["width"])) return text;
      return text + ", JPEG " + number("width") + " x " + number("height");
    }
    case Record::To::Ui:
    case Record::To::Answer:
    case Record::To::State:
      return Document(record);
  }
  return {};
}

}  // namespace driverhost
