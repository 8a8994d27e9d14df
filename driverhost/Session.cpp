#include "driverhost/Session.h"

#include "driverhost/StepReader.h"

#include <sys/types.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace driverhost {

namespace {

constexpr std::string_view s_ByteOrderMark = "\xEF\xBB\xBF";

bool IsSkipped(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos || line.front() == '#';
}

}  // namespace

void Session::LineFree::operator()(char* line) const { std::free(line); }

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

std::optional<std::string_view> Session::ReadLine() {
  char* line = m_Line.release();
  errno = 0;
  const ssize_t size = getline(&line, &m_Capacity, m_File.get());
  const int error = errno;
  m_Line.reset(line);
  // After an error, too, getline returns what it has of the line; without memory it sets no flag.
  if (std::ferror(m_File.get()) || (size < 0 && !std::feof(m_File.get()))) {
    if (error == EINTR) return std::nullopt;
    throw SessionError("driverhost: cannot read " + m_Name + ": " + std::strerror(error));
  }
  if (size < 0) return std::nullopt;
  ++m_Lines;
  std::string_view text(line, static_cast<std::size_t>(size));
  if (m_Lines == 1 && text.substr(0, s_ByteOrderMark.size()) == s_ByteOrderMark) {
    text.remove_prefix(s_ByteOrderMark.size());
  }
  if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
  return text;
}

std::optional<Step> Session::Next() {
  while (const auto line = ReadLine()) {
    if (IsSkipped(*line)) continue;
    try {
      std::optional<Step> step = ReadStep(*line, m_Folder);
      step->line = m_Lines;
      return step;
    } catch (const std::runtime_error& error) {
      throw SessionError(m_Name + ':' + std::to_string(m_Lines) + ": " + error.what());
    }
  }
  return std::nullopt;
}

}  // namespace driverhost
