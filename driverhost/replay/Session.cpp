#include "driverhost/replay/Session.h"

#include "driverhost/io/Interrupt.h"
#include "session/ReadLine.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace driverhost {

Session::Session(const std::string& path, Loop& loop) : m_Name(path), m_Loop(loop) {
  if (path == "-") {
    m_File.reset(stdin);
  } else {
    try {
      m_File = OpenFile(path);
    } catch (const std::exception& error) {
      throw SessionError(std::string("driverhost: ") + error.what());
    }
    m_Folder = std::filesystem::path(path).parent_path();
  }
  m_Readiness = std::make_unique<Readiness>(loop.Context(), fileno(m_File.get()));
}

void Session::Fail(int error) const {
  throw SessionError("driverhost: cannot read " + m_Name + ": " + std::strerror(error));
}

void Session::KeepContent() {
  if (lseek(fileno(m_File.get()), 0, SEEK_CUR) >= 0) return;
  m_Copy.reset(std::tmpfile());
  if (!m_Copy) Fail(errno);
}

void Session::Rewind() {
  if (m_Copy) {
    m_File = std::move(m_Copy);
    m_Readiness = std::make_unique<Readiness>(m_Loop.Context(), fileno(m_File.get()));
  }
  if (lseek(fileno(m_File.get()), 0, SEEK_SET) < 0) Fail(errno);
  m_Splitter = session::LineSplitter();
  m_AtEnd = false;
}

bool Session::WaitUntilReadable() {
  m_Readable = false;
  m_Readiness->Wait([this] { m_Readable = true; });
  return m_Loop.RunUntil([this] { return m_Readable; });
}

bool Session::ReadPart() {
  if (m_AtEnd || !WaitUntilReadable()) return false;
  std::array<char, 65536> part;
  const ssize_t size = read(fileno(m_File.get()), part.data(), part.size());
  if (size < 0 && (errno == EINTR || errno == EAGAIN)) return Interrupted() == 0;
  if (size < 0) Fail(errno);
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

std::optional<session::LineSplitter::Line> Session::NextLine() {
  for (;;) {
    if (auto line = m_Splitter.Next()) return line;
    if (!ReadPart()) return std::nullopt;
  }
}

Step Session::Read(const session::LineSplitter::Line& line) const {
  try {
    return ReadStep(line, From::Session, m_Name, &m_Folder);
  } catch (const std::runtime_error& error) {
    throw SessionError(m_Name + ':' + std::to_string(line.number) + ": " + error.what());
  }
}

}  // namespace driverhost
