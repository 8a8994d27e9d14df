#include "driverhost/check/Junit.h"

#include "session/Legible.h"

#include <cstdio>
#include <stdexcept>

namespace driverhost {

namespace {

// Control characters cannot stand in XML.
std::string Lines(const std::string& text) {
  std::string lines;
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    lines += session::Legible(rest.substr(0, end), rest.size() * 4) + '\n';
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return lines;
}

}  // namespace

Junit::Junit() : m_Suite(m_Document.append_child("testsuite")) {
  m_Suite.append_attribute("name") = "driverhost check";
}

void Junit::Add(const CaseResult& result, const std::string& told, double seconds) {
  char time[40];
  std::snprintf(time, sizeof time, "%.3f", seconds);
  ++m_Tests;
  pugi::xml_node test = m_Suite.append_child("testcase");
  test.append_attribute("name") = session::Legible(result.path, result.path.size() * 4).c_str();
  test.append_attribute("time") = time;
  if (result.status == s_AllWell) return;
  ++m_Failures;
  std::string text = told;
  for (const CaseDifference& difference : result.differences) {
    text += DifferenceText(result, difference);
  }
  pugi::xml_node failure = test.append_child("failure");
  failure.append_attribute("message") =
      result.differences.empty() ? "failed" : "the traffic differs";
  failure.text() = Lines(text).c_str();
}

void Junit::Write(const std::string& path) {
  m_Suite.append_attribute("tests") = m_Tests;
  m_Suite.append_attribute("failures") = m_Failures;
  if (!m_Document.save_file(path.c_str())) throw std::runtime_error("cannot write " + path);
}

}  // namespace driverhost
