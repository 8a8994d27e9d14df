#pragma once

#include <string>

namespace driverhost {

// The directory below which pictures are written.
class ImageRoot {
 public:
  // `asked` is made if missing; a failure shows where the driver meets it. An empty one stands for
  // a new directory for temporary files; throws std::runtime_error when that cannot be made.
  explicit ImageRoot(const std::string& asked);

  // With its separator at the end.
  const std::string& Path() const { return m_Path; }

  // Removes a temporary directory in which no file has been written. Returns whether there is a
  // directory for somebody to look into.
  bool Keep() const;

 private:
  std::string m_Path;
  bool m_Temporary;
};

}  // namespace driverhost
