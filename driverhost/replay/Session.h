#pragma once

#include "driverhost/io/FileContent.h"
#include "driverhost/io/Loop.h"
#include "driverhost/run/Step.h"
#include "session/LineSplitter.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace driverhost {

// A wrong line, with a text that begins with "FILE:LINE: ", or a session that cannot be read.
class SessionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A session file, read line by line as it is asked for. Holds no more than a line of it.
class Session {
 public:
  // `path` is "-" for standard input. `loop`, which is borrowed and outlives the object, runs while
  // a pipe or a terminal has nothing to read. Throws SessionError.
  Session(const std::string& path, Loop& loop);

  // The next line, whatever it holds; nothing at the end, and when a signal interrupts the reading.
  // Valid until the next call. Throws SessionError.
  std::optional<session::LineSplitter::Line> NextLine();

  // What a line that is a step asks for. Throws SessionError.
  Step Read(const session::LineSplitter::Line& line) const;

  // How many lines have been read, the skipped ones too.
  unsigned long Lines() const { return m_Splitter.Count(); }

  // From now on what is read is kept, on disk where it comes from a pipe, so that Rewind can start
  // again.
  void KeepContent();

  // Starts again at the first line. Requires: KeepContent was called before the first line was
  // read.
  void Rewind();

  const std::string& Name() const { return m_Name; }

 private:
  // Returns whether there was more.
  bool ReadPart();
  bool WaitUntilReadable();

  [[noreturn]] void Fail(int error) const;

  const std::string m_Name;
  Loop& m_Loop;
  FilePtr m_File;
  FilePtr m_Copy;  // of what came from a pipe
  std::filesystem::path m_Folder;
  session::LineSplitter m_Splitter;
  std::unique_ptr<Readiness> m_Readiness;
  bool m_Readable = false;
  bool m_AtEnd = false;
};

}  // namespace driverhost
