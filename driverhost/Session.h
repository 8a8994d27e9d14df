#pragma once

#include "driverhost/FileContent.h"
#include "driverhost/LineSplitter.h"
#include "driverhost/Step.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace driverhost {

// A wrong line, with a text that begins with "FILE:LINE: ", or a session that cannot be read.
class SessionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A line is a step unless it is empty, is a comment, or, in a case, is a record: an object whose
// first key is "to".
enum class LineKind { Step, Comment, Record };
LineKind KindOf(const LineSplitter::Line& line);

// A session file, read line by line as it is asked for. Holds no more than a line of it.
class Session {
 public:
  // `path` is "-" for standard input. Throws SessionError.
  explicit Session(const std::string& path);

  // From now on `wait` is called with the descriptor before each reading. When it returns false,
  // nothing is read and NextLine returns nothing.
  void WaitBeforeReading(std::function<bool(int)> wait) { m_Wait = std::move(wait); }

  // The next line, whatever it holds; nothing at the end, and when a signal interrupts the reading.
  // Valid until the next call. Throws SessionError.
  std::optional<LineSplitter::Line> NextLine();

  // What a line that is a step asks for. Throws SessionError.
  Step Read(const LineSplitter::Line& line) const;

  // As NextLine and Read, without the lines that are no steps.
  std::optional<Step> Next();

  // How many lines have been read, the skipped ones too.
  unsigned long Lines() const { return m_Splitter.Count(); }

  // From now on what is read is kept, on disk where it comes from a pipe, so that Rewind can start
  // again.
  void Keep();

  // Starts again at the first line. Requires: Keep was called before the first line was read.
  void Rewind();

  const std::string& Name() const { return m_Name; }

 private:
  // Whether there was more.
  bool Fill();

  [[noreturn]] void Fail(int error) const;

  const std::string m_Name;
  FilePtr m_File;
  FilePtr m_Copy;  // of what came from a pipe
  std::filesystem::path m_Folder;
  LineSplitter m_Splitter;
  std::function<bool(int)> m_Wait;
  bool m_AtEnd = false;
};

}  // namespace driverhost
