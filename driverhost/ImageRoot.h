#pragma once

#include <string>

namespace driverhost {

// The directory below which pictures are written.
class ImageRoot {
 public:
  // `asked` is made if it is missing; if that fails, the driver will log it. An empty `asked`
  // stands for a new temporary directory; throws std::runtime_error when that cannot be made.
  explicit ImageRoot(const std::string& asked);

  // With its separator at the end.
  const std::string& Path() const { return m_Path; }

  // Removes a temporary directory in which no file has been written. Returns whether the directory
  // exists then.
  bool Keep() const;

 private:
  std::string m_Path;
  bool m_Temporary;
};

}  // namespace driverhost
