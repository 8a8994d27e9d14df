#pragma once

#include <string>

namespace standin {

class Services;

// A call of a host into its driver, on the thread that makes the object. What the driver has
// released for the last time in it is destroyed when it is over. A host makes one call at a time.
class Call {
 public:
  // `request` is the name of the user-interface request that the call delivers, null for any other
  // call. Both are borrowed.
  explicit Call(Services& services, const std::string* request = nullptr);
  ~Call();
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  // The services of the host whose call runs on this thread; null outside a call.
  static Services* Current() { return s_Current; }

 private:
  // The model saves a function call for each look. It asks that the library is there when the
  // program starts.
  [[gnu::tls_model("initial-exec")]] static constinit thread_local Services* s_Current;

  Services* const m_Outer;  // another host's, whose driver leads to this call
};

}  // namespace standin
