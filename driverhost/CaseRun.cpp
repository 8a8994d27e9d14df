#include "driverhost/CaseRun.h"

#include "driverhost/Comparison.h"
#include "driverhost/Count.h"
#include "driverhost/StepTitle.h"

#include <filesystem>
#include <fstream>

namespace driverhost {

CaseRun::CaseRun(const CheckOptions& options, const std::string& path,
                 const standin::Plugin& plugin, const LifeOptions& life, Output& output)
    : m_Options(options),
      m_Output(output),
      m_Session(path),
      m_Verdict(path, output),
      m_Life(life, plugin, m_Traffic, output, m_Verdict),
      m_Hints(m_Life, output),
      m_Coverage(m_Life) {
  m_Traffic.Add(m_Collector);
  m_Traffic.Add(m_Hints);
  if (options.coverage) m_Traffic.Add(m_Coverage);
  m_Lines.push_back({0, LineKind::Step, false, ""});
  while (const auto line = m_Session.NextLine()) {
    m_Lines.push_back({line->number, KindOf(*line), line->tooLong, std::string(line->text)});
  }
  m_Came.resize(m_Lines.size());
}

int CaseRun::Run() {
  try {
    if (m_Life.Begin()) Play();
  } catch (const SessionError& error) {
    m_Verdict.Fail(s_Wrong, error.what());
  }
  m_Life.End(m_Session.Lines() + 1);
  if (m_Options.strict && m_Hints.Serious()) {
    m_Verdict.FailDriver("there were hints");
  }
  if (m_Options.update && m_Verdict.Status() == s_Ran) Update();
  const bool good = m_Verdict.Status() == s_Ran && !m_Differs;
  if (good && !m_Options.quiet) {
    m_Output.Write("ok " + m_Session.Name() + " (" + Count(m_Steps, "line") + ", " +
                   Count(m_Records, "record") + ")\n");
  }
  m_Output.Flush();
  return good ? s_Ran : m_Verdict.Status() == s_Ran ? s_Failed : m_Verdict.Status();
}

void CaseRun::Play() {
  m_Came[0] = m_Collector.records;
  const auto creation = ExpectedAfter(0);
  if (!creation.empty()) Compare(0, creation);
  for (std::size_t place = 1; place < m_Lines.size(); ++place) {
    const Line& line = m_Lines[place];
    if (line.kind != LineKind::Step) continue;
    const Step step = m_Session.Read({line.number, line.text, line.tooLong});
    ++m_Steps;
    const bool alive = m_Life.Deliver(line.number, step);
    m_Came[place] = m_Collector.records;
    Compare(place, ExpectedAfter(place));
    if (!alive) return;
  }
}

std::vector<std::string_view> CaseRun::ExpectedAfter(std::size_t place) const {
  std::vector<std::string_view> records;
  while (++place < m_Lines.size() && m_Lines[place].kind != LineKind::Step) {
    if (m_Lines[place].kind == LineKind::Record) records.emplace_back(m_Lines[place].text);
  }
  return records;
}

void CaseRun::Compare(std::size_t place, const std::vector<std::string_view>& expected) {
  const std::vector<std::string>& came = m_Came[place];
  m_Records += came.size();
  if (m_Options.update || std::equal(expected.begin(), expected.end(), came.begin(), came.end())) {
    return;
  }
  CheckRecords(place);
  const std::string differences = Differences(expected, came, m_Options.coloured);
  if (differences.empty()) return;
  m_Differs = true;
  const std::string title =
      place == 0 ? "create, initialize" : StepTitle(m_Lines[place].text, false);
  m_Output.Write(m_Session.Name() + ':' + std::to_string(m_Lines[place].number) + ": " + title +
                 '\n' + differences);
}

// Throws SessionError for the first invalid record after the line.
void CaseRun::CheckRecords(std::size_t place) const {
  while (++place < m_Lines.size() && m_Lines[place].kind != LineKind::Step) {
    const Line& line = m_Lines[place];
    if (line.kind != LineKind::Record) continue;
    const std::string at = m_Session.Name() + ':' + std::to_string(line.number) + ": ";
    const auto json = nlohmann::json::parse(line.text, nullptr, false);
    if (!json.is_object()) throw SessionError(at + "a record is one JSON object");
    if (json.contains("step")) throw SessionError(at + "the records of a case have no \"step\"");
  }
}

// The new text takes the old one's place when it is complete. If the case had no records of
// creation, it gets none.
void CaseRun::Update() {
  const std::string path = m_Session.Name();
  const std::string unfinished = path + ".new";
  std::ofstream file(unfinished, std::ios::binary);
  if (ExpectedAfter(0).empty()) m_Came[0].clear();
  for (std::size_t place = 0; place < m_Lines.size(); ++place) {
    if (place > 0 && m_Lines[place].kind != LineKind::Record) file << m_Lines[place].text << '\n';
    for (const std::string& record : m_Came[place]) file << record << '\n';
  }
  file.close();
  std::error_code error;
  if (file) std::filesystem::rename(unfinished, path, error);
  if (!file || error) m_Verdict.Fail(s_Failed, "driverhost: cannot write " + path);
}

}  // namespace driverhost
