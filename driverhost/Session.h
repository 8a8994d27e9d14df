#pragma once

#include "driverhost/FileContent.h"
#include "driverhost/Step.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace driverhost {

// A wrong line; the text begins with "FILE:LINE: ". Or a session that cannot be read.
class SessionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A session file, read line by line as it is asked for.
class Session {
 public:
  // `path` is "-" for standard input. Throws SessionError.
  explicit Session(const std::string& path);

  // The next line that is a step; nothing at the end, and when a signal interrupts the reading.
  // Throws SessionError.
  std::optional<Step> Next();

  // How many lines have been read, the skipped ones too.
  unsigned long Lines() const { return m_Lines; }

 private:
  struct LineFree {
    void operator()(char* line) const;
  };

  // The next line without its line break. Valid until the next call.
  std::optional<std::string_view> ReadLine();

  const std::string m_Name;
  FilePtr m_File;
  std::filesystem::path m_Folder;
  std::unique_ptr<char, LineFree> m_Line;
  std::size_t m_Capacity = 0;
  unsigned long m_Lines = 0;
};

}  // namespace driverhost
