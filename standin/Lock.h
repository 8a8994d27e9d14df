#pragma once

#include <sys/single_threaded.h>

#include <mutex>

namespace standin {

// While one exists, no other thread has one: a driver's threads may use its host, though they
// should not. It can be taken again on the same thread, and costs nothing while the process has one
// thread.
class Lock {
 public:
  Lock() : m_Taken(!__libc_single_threaded) {
    if (m_Taken) s_Mutex.lock();
  }
  ~Lock() {
    if (m_Taken) s_Mutex.unlock();
  }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

 private:
  static std::recursive_mutex s_Mutex;

  const bool m_Taken;
};

}  // namespace standin
