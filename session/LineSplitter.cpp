#include "session/LineSplitter.h"

namespace session {

namespace {

constexpr std::string_view s_ByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

void LineSplitter::Append(std::string_view bytes) {
  m_Buffer.erase(0, m_Begin);
  m_Searched -= m_Begin;
  m_Begin = 0;
  m_Buffer += bytes;
}

void LineSplitter::End() {
  if (m_TooLong || m_Begin < m_Buffer.size()) Append("\n");
}

std::optional<LineSplitter::Line> LineSplitter::Next() {
  const std::size_t end = m_Buffer.find('\n', m_Searched);
  const bool whole = end != std::string::npos;
  const std::size_t length = (whole ? end : m_Buffer.size()) - m_Begin;
  if (length > m_Longest) m_TooLong = true;
  if (!whole) {
    m_Searched = m_Buffer.size();
    if (m_TooLong) m_Begin = m_Searched;
    return std::nullopt;
  }
  Line line{++m_Count, std::string_view(m_Buffer).substr(m_Begin, length), m_TooLong};
  m_Begin = m_Searched = end + 1;
  m_TooLong = false;
  if (line.tooLong) line.text = {};
  if (line.number == 1 && line.text.starts_with(s_ByteOrderMark)) {
    line.text.remove_prefix(s_ByteOrderMark.size());
  }
  if (line.text.ends_with('\r')) line.text.remove_suffix(1);
  return line;
}

}  // namespace session
