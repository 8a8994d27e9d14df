#pragma once

#include <unistd.h>

#include <utility>

namespace driverhost {

// Owns an open descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) : m_Descriptor(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : m_Descriptor(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      Close();
      m_Descriptor = other.Release();
    }
    return *this;
  }
  ~Descriptor() { Close(); }

  explicit operator bool() const { return m_Descriptor >= 0; }
  int Get() const { return m_Descriptor; }

  // The caller's from now on.
  int Release() { return std::exchange(m_Descriptor, -1); }

  void Close() {
    if (m_Descriptor >= 0) close(Release());
  }

 private:
  int m_Descriptor = -1;
};

}  // namespace driverhost
