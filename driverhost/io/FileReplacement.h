#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace driverhost {

// A file whose text is replaced, whole or not at all.
class FileReplacement {
 public:
  // Finds the file behind all links and reads it: from now on neither they nor the working
  // directory matter. Throws std::runtime_error when it is no regular file, or cannot be read or
  // written.
  explicit FileReplacement(const std::filesystem::path& path);

  const std::string& Text() const { return m_Text; }

  // The new file has the mode and the owner of the old one; another hard link keeps the old text.
  // Throws std::runtime_error when it cannot be written: the old file stands then. Nothing is left
  // beside it, whatever signal ends the program.
  void Replace(std::string_view text) const;

 private:
  const std::string m_Path;
  std::string m_Text;
};

}  // namespace driverhost
