#pragma once

#include <string>

namespace driverhost {

// The directory below which pictures are written.
class ImageRoot {
 public:
  // `asked` is made if it is missing; if that fails, the driver will log it. An empty `asked`
  // stands for a new temporary directory; throws std::runtime_error when that cannot be made.
  explicit ImageRoot(const std::string& asked);

  // Removes a temporary directory with all that is in it, unless it is kept.
  ~ImageRoot();
  ImageRoot(const ImageRoot&) = delete;
  ImageRoot& operator=(const ImageRoot&) = delete;

  // With its separator at the end.
  const std::string& Path() const { return m_Path; }

  // From now on a temporary directory in which a file has been written is kept. Returns whether the
  // directory will be there.
  bool KeepIfUsed();

 private:
  std::string m_Path;
  bool m_Temporary;
};

}  // namespace driverhost
