#pragma once

#include <utility>

namespace tq {

// Holds at most one reference to a reference-counted T and releases it when it is destroyed. Moving
// transfers the reference; copying takes another one. Nothing else calls AddRef and Release.
template <class T>
class auto_com {
 public:
  auto_com() noexcept = default;

  // Takes over one reference of the caller's; `object` may be null.
  explicit auto_com(T* object) noexcept : m_Object(object) {}

  auto_com(const auto_com& other) noexcept : m_Object(other.m_Object) {
    if (m_Object) m_Object->AddRef();
  }
  auto_com(auto_com&& other) noexcept : m_Object(std::exchange(other.m_Object, nullptr)) {}

  auto_com& operator=(auto_com other) noexcept {
    std::swap(m_Object, other.m_Object);
    return *this;
  }

  ~auto_com() {
    if (T* object = std::exchange(m_Object, nullptr)) object->Release();
  }

  T* get() const noexcept { return m_Object; }
  T* operator->() const noexcept { return m_Object; }
  T& operator*() const noexcept { return *m_Object; }
  explicit operator bool() const noexcept { return m_Object != nullptr; }

 private:
  T* m_Object = nullptr;
};

}  // namespace tq
