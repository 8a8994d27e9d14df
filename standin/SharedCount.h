#pragma once

#include <sys/single_threaded.h>

#include <atomic>
#include <cstddef>

namespace standin {

// A count that any thread may change. While the process has one thread it costs no more than a
// plain one.
class SharedCount {
 public:
  explicit constexpr SharedCount(std::size_t value = 0) : m_Value(value) {}

  std::size_t Get() const { return m_Value.load(std::memory_order_relaxed); }
  void Set(std::size_t value) { m_Value.store(value, std::memory_order_relaxed); }

  // Both return the count afterwards.
  std::size_t Add(std::size_t more) {
    if (!__libc_single_threaded) return m_Value.fetch_add(more) + more;
    Set(Get() + more);
    return Get();
  }
  std::size_t Subtract(std::size_t less) { return Add(-less); }

 private:
  std::atomic<std::size_t> m_Value;
};

}  // namespace standin
