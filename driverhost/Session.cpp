#include "driverhost/Session.h"

#include "driverhost/StepReader.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace driverhost {

LineKind KindOf(const LineSplitter::Line& line) {
  std::string_view text = line.text;
  const auto skipBlanks = [&text] {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  };
  skipBlanks();
  if (line.tooLong) return LineKind::Step;  // a wrong one
  if (text.empty() || text[0] == '#') return LineKind::Comment;
  text.remove_prefix(1);
  skipBlanks();
  return text.starts_with("\"to\"") ? LineKind::Record : LineKind::Step;
}

Session::Session(const std::string& path) : m_Name(path) {
  if (path == "-") {
    m_File.reset(stdin);
    return;
  }
  try {
    m_File = OpenFile(path);
  } catch (const std::exception& error) {
    throw SessionError(std::string("driverhost: ") + error.what());
  }
  m_Folder = std::filesystem::path(path).parent_path();
}

void Session::Fail(int error) const {
  throw SessionError("driverhost: cannot read " + m_Name + ": " + std::strerror(error));
}

void Session::Keep() {
  if (lseek(fileno(m_File.get()), 0, SEEK_CUR) >= 0) return;
  m_Copy.reset(std::tmpfile());
  if (!m_Copy) Fail(errno);
}

void Session::Rewind() {
  if (m_Copy) m_File = std::move(m_Copy);
  if (lseek(fileno(m_File.get()), 0, SEEK_SET) < 0) Fail(errno);
  m_Splitter = {};
  m_AtEnd = false;
}

bool Session::Fill() {
  if (m_Wait && !m_Wait(fileno(m_File.get()))) return false;
  std::array<char, 65536> part;
  const ssize_t size = read(fileno(m_File.get()), part.data(), part.size());
  if (size < 0 && errno != EINTR) Fail(errno);
  if (size < 0 || m_AtEnd) return false;
  if (size == 0) {
    m_AtEnd = true;
    m_Splitter.End();
    return true;
  }
  m_Splitter.Append({part.data(), static_cast<std::size_t>(size)});
  if (m_Copy && write(fileno(m_Copy.get()), part.data(), static_cast<std::size_t>(size)) != size) {
    Fail(errno);
  }
  return true;
}

std::optional<LineSplitter::Line> Session::NextLine() {
  for (;;) {
    if (auto line = m_Splitter.Next()) return line;
    if (!Fill()) return std::nullopt;
  }
}

Step Session::Read(const LineSplitter::Line& line) const {
  try {
    Step step = ReadStep(line, &m_Folder);
    step.source = m_Name;
    return step;
  } catch (const std::runtime_error& error) {
    throw SessionError(m_Name + ':' + std::to_string(line.number) + ": " + error.what());
  }
}

std::optional<Step> Session::Next() {
  while (const auto line = NextLine()) {
    if (KindOf(*line) == LineKind::Step) return Read(*line);
  }
  return std::nullopt;
}

}  // namespace driverhost
