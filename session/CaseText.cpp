#include "session/CaseText.h"

#include "session/Case.h"
#include "session/LineSplitter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace session {

namespace {

using Records = std::vector<std::string>;

// How much of two lists lies between their common beginning and their common end.
std::size_t Changes(const Records& old, const Records& came) {
  const auto [one, two] = std::mismatch(old.begin(), old.end(), came.begin(), came.end());
  const auto [oneEnd, twoEnd] = std::mismatch(old.rbegin(), std::make_reverse_iterator(one),
                                              came.rbegin(), std::make_reverse_iterator(two));
  return static_cast<std::size_t>(std::max(oneEnd.base() - one, twoEnd.base() - two));
}

class Writer {
 public:
  Writer(const CaseRecords& came, std::string lineEnd)
      : m_Came(came), m_LineEnd(std::move(lineEnd)) {}

  // `raw` is the line as it stands, with its end.
  void Take(const LineSplitter::Line& line, std::string_view raw) {
    const LineKind kind = KindOf(line);
    if (kind == LineKind::Record) {
      if (m_Old.empty()) m_Place = m_Case.text.size();
      m_Old.emplace_back(line.text);
      return;
    }
    if (kind == LineKind::Step) EndStep();
    m_Case.text += raw;
    if (kind != LineKind::Step) return;
    m_Number = line.number;
    m_Place = m_Case.text.size();
  }

  CaseText End() {
    EndStep();
    return std::move(m_Case);
  }

 private:
  void EndStep() {
    if (m_Number == 0 && m_Old.empty()) return;
    const Records& came = m_Came[m_Number];
    m_Case.changed += Changes(m_Old, came);
    std::string records;
    for (const std::string& record : came) records += record + m_LineEnd;
    const bool inLine = m_Place > 0 && m_Case.text[m_Place - 1] != '\n';
    if (inLine && !records.empty()) records.insert(0, m_LineEnd);
    m_Case.text.insert(m_Place, records);
    m_Old.clear();
  }

  const CaseRecords& m_Came;
  const std::string m_LineEnd;
  CaseText m_Case{};
  unsigned long m_Number = 0;
  std::size_t m_Place = 0;  // of this step's records
  Records m_Old;            // this step's
};

}  // namespace

CaseText WithRecords(std::string_view old, const CaseRecords& came) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  const bool marked = old.starts_with(byteOrderMark);
  if (marked) old.remove_prefix(byteOrderMark.size());
  const std::size_t first = old.find('\n');
  const bool dos = first != std::string_view::npos && first > 0 && old[first - 1] == '\r';
  Writer writer(came, dos ? "\r\n" : "\n");
  LineSplitter splitter;
  while (!old.empty()) {
    const std::string_view raw = old.substr(0, std::min(old.find('\n'), old.size() - 1) + 1);
    old.remove_prefix(raw.size());
    splitter.Append(raw);
    if (old.empty()) splitter.End();
    if (const auto line = splitter.Next()) writer.Take(*line, raw);
  }
  CaseText text = writer.End();
  if (marked) text.text.insert(0, byteOrderMark);
  return text;
}

}  // namespace session
