#include "driverhost/check/CaseRun.h"

#include "driverhost/check/Comparison.h"
#include "driverhost/io/Interrupt.h"
#include "driverhost/replay/Session.h"
#include "driverhost/text/StepTitle.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace driverhost {

namespace {

using session::LineKind;

}  // namespace

CaseRun::CaseRun(const CheckOptions& options, std::string path, Loop& loop)
    : m_Options(options),
      m_Path(std::move(path)),
      m_Loop(loop),
      m_Process(options.process),
      m_Verdict(m_Path, m_Console),
      m_Hints(m_Console),
      m_Run(loop, m_Process, options.timeout, m_Traffic, m_Verdict, m_Console,
            [this] { SendLines(); }) {
  m_Result.path = m_Path;
  if (options.update) m_File.emplace(m_Path);  // before a driver can move it
  m_Process.imageRoot = m_ImageRoot.Path();
  m_Traffic.Add(*this);
  m_Traffic.Add(m_Hints);
  if (options.coverage) m_Traffic.Add(m_Coverage);
  ReadLines();
}

void CaseRun::ReadLines() {
  m_Lines.push_back({LineKind::Step, false, ""});
  if (m_File) {
    session::LineSplitter lines;
    lines.Append(m_File->Text());
    lines.End();
    while (const auto line = lines.Next()) TakeLine(*line);
  } else {
    Session session(m_Path, m_Loop);
    while (const auto line = session.NextLine()) TakeLine(*line);
  }
  if (Interrupted() != 0) throw SessionError("driverhost: " + m_Path + " was not read to its end");
  m_CameAfter.resize(m_Lines.size());
}

void CaseRun::TakeLine(const session::LineSplitter::Line& line) {
  m_Lines.push_back({session::KindOf(line), line.tooLong, std::string(line.text)});
}

// The first step may be what the driver is initialized with.
void CaseRun::Start() {
  session::Start start;
  const auto first = std::find_if(m_Lines.begin() + 1, m_Lines.end(),
                                  [](const Line& line) { return line.kind == LineKind::Step; });
  if (first != m_Lines.end()) {
    const auto place = static_cast<std::size_t>(first - m_Lines.begin());
    try {
      const Step step = ReadLine(place);
      if (const auto* given = std::get_if<session::Start>(&step.line.action)) {
        start = *given;
        m_NextPlace = place + 1;
      }
    } catch (const SessionError&) {  // it is told when it is sent
    }
  }
  m_Run.Start(start);
}

Step CaseRun::ReadLine(std::size_t place) const {
  const Line& line = m_Lines[place];
  const std::filesystem::path folder = std::filesystem::path(m_Path).parent_path();
  try {
    return ReadStep({place, line.text, line.tooLong}, From::Session, m_Path, &folder);
  } catch (const std::runtime_error& error) {
    throw SessionError(m_Path + ':' + std::to_string(place) + ": " + error.what());
  }
}

void CaseRun::SendLines() {
  try {
    while (!m_Wrong && m_NextPlace < m_Lines.size() && m_Run.HasRoom() && m_Run.TakesLines()) {
      const std::size_t place = m_NextPlace++;
      if (m_Lines[place].kind != LineKind::Step) continue;
      Step step = ReadLine(place);
      step.number = place;
      m_Run.Deliver(std::move(step));
    }
  } catch (const SessionError& error) {
    m_Wrong = error.what();
  }
  if (m_Wrong || m_NextPlace == m_Lines.size()) m_Run.End(m_Lines.size());
}

void CaseRun::OnStep(const Step&) { m_Came.clear(); }

void CaseRun::OnRecord(const Step&, const session::Record& record) {
  m_Came.push_back(record.Json());
}

void CaseRun::OnStepEnd(const Step& step, const Reads&) {
  const std::size_t place = step.number;
  if (place >= m_Lines.size()) return;  // destruction
  if (place > 0) ++m_Result.lines;
  m_CameAfter[place] = std::exchange(m_Came, {});
  if (place == 0 && ExpectedAfter(0).empty()) return;
  m_Result.records += m_CameAfter[place].size();
  Compare(step, place);
}

std::vector<std::string_view> CaseRun::ExpectedAfter(std::size_t place) const {
  std::vector<std::string_view> records;
  while (++place < m_Lines.size() && m_Lines[place].kind != LineKind::Step) {
    if (m_Lines[place].kind == LineKind::Record) records.emplace_back(m_Lines[place].text);
  }
  return records;
}

void CaseRun::Compare(const Step& step, std::size_t place) {
  const std::vector<std::string>& came = m_CameAfter[place];
  const auto expected = ExpectedAfter(place);
  if (m_Wrong || m_File) return;
  if (std::equal(expected.begin(), expected.end(), came.begin(), came.end())) return;
  try {
    CheckRecords(place);
  } catch (const SessionError& error) {
    m_Wrong = error.what();
    return;
  }
  const std::string words = Differences(expected, came, m_Options.coloured && !m_Options.json);
  if (words.empty()) return;
  AddDifference(
      {place, StepTitle(step.line, false), {expected.begin(), expected.end()}, came, words});
}

void CaseRun::AddDifference(CaseDifference difference) {
  const auto [known, isNew] = m_Known.emplace(difference.words, m_Result.differences.size());
  if (isNew) return m_Result.differences.push_back(std::move(difference));
  ++m_Result.differences[known->second].times;
}

// Throws SessionError for the first invalid record after the line.
void CaseRun::CheckRecords(std::size_t place) const {
  while (++place < m_Lines.size() && m_Lines[place].kind != LineKind::Step) {
    if (m_Lines[place].kind != LineKind::Record) continue;
    const std::string fault = session::RecordFault(m_Lines[place].text);
    if (fault.empty()) continue;
    throw SessionError(m_Path + ':' + std::to_string(place) + ": " + fault);
  }
}

CaseResult CaseRun::Finish() {
  if (m_Wrong) m_Verdict.Fail(s_InputWrong, *m_Wrong);
  if (m_Options.strict && m_Hints.Serious()) m_Verdict.FailDriver("there were hints");
  for (const CaseDifference& difference : m_Result.differences) {
    if (!m_Options.json) m_Console.Write(DifferenceText(m_Result, difference));
  }
  if (m_File && m_Verdict.Status() == s_AllWell) Update();
  m_Result.status = m_Verdict.Status();
  if (m_Result.status == s_AllWell && !m_Result.differences.empty())
    m_Result.status = s_DriverFailed;
  return m_Result;
}

void CaseRun::Update() {
  try {
    const session::CaseText updated = session::WithRecords(m_File->Text(), m_CameAfter);
    if (updated.changed > 0) m_File->Replace(updated.text);
    m_Result.updated = updated.changed;
  } catch (const std::runtime_error& error) {
    m_Verdict.Fail(s_DriverFailed, std::string("driverhost: ") + error.what());
  }
}

}  // namespace driverhost
