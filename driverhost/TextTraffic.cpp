#include "driverhost/TextTraffic.h"

#include "driverhost/FileContent.h"
#include "driverhost/JpegSize.h"
#include "driverhost/Legible.h"

#include <cstdio>
#include <exception>

namespace driverhost {

namespace {

constexpr std::size_t s_LongestName = 60;
constexpr std::size_t s_LongestValue = 160;

std::string TextOr(const std::string* text, const char* none) {
  return text ? Legible(*text, s_LongestValue) : none;
}

std::string CommandText(const std::string& command, const standin::Params& params) {
  std::string text = Legible(command, s_LongestName);
  for (const standin::Param& param : params) {
    text += ' ' + Legible(param.name, s_LongestName) + '=' + Legible(param.value, s_LongestValue);
  }
  return text;
}

std::string FileText(const std::string& path) {
  try {
    const std::string content = ReadFile(path);
    std::string text = Legible(path, s_LongestValue);
    text += ", " + std::to_string(content.size()) + " bytes";
    if (const auto size = ReadJpegSize(content)) {
      text += ", JPEG " + std::to_string(size->width) + " x " + std::to_string(size->height);
    }
    return text;
  } catch (const std::exception& error) {
    return error.what();
  }
}

}  // namespace

void TextTraffic::WriteRow(const char* kind, const std::string& text) {
  char head[40];
  std::snprintf(head, sizeof head, m_Coloured ? "        \033[36m%-9s\033[0m" : "        %-9s",
                kind);
  m_Output.Write(head + text + '\n');
}

void TextTraffic::BeginStep(unsigned long number, const std::string& title) {
  char head[40];
  std::snprintf(head, sizeof head, m_Coloured ? "\033[1m%6lu  " : "%6lu  ", number);
  m_Output.Write(head + title + (m_Coloured ? "\033[0m\n" : "\n"));
}

void TextTraffic::OnFile(const std::string& path) {
  Traffic::OnFile(path);
  WriteRow("file", FileText(path));
}

void TextTraffic::OnVariable(Change change, unsigned long id, const std::string& name,
                             const std::string& value) {
  WriteRow("variable", std::string(ChangeText(change)) + ' ' + std::to_string(id) + ' ' +
                           Legible(name, s_LongestName) + '=' + Legible(value, s_LongestValue));
}

void TextTraffic::OnEvent(unsigned long id) {
  Traffic::OnEvent(id);
  WriteRow("event", std::to_string(id));
}

void TextTraffic::OnUi(const std::string& xml) {
  Traffic::OnUi(xml);
  WriteRow("ui", Legible(xml, s_LongestValue));
}

void TextTraffic::OnRooms(const std::string& command, const standin::Params& params) {
  WriteRow("rooms", CommandText(command, params));
}

void TextTraffic::OnDevice(unsigned long binding, const std::string& command,
                           const standin::Params& params, const ICmdReturn*) {
  WriteRow("device", std::to_string(binding) + ' ' + CommandText(command, params));
}

void TextTraffic::OnAnswer(const std::string&, const std::string* xml) {
  WriteRow("answer", TextOr(xml, "(none)"));
}

void TextTraffic::OnState(const std::string* xml) { WriteRow("state", TextOr(xml, "(none)")); }

void TextTraffic::OnLog(unsigned int level, const std::string& text) {
  WriteRow("log", std::to_string(level) + ' ' + Legible(text, s_LongestValue));
}

}  // namespace driverhost
