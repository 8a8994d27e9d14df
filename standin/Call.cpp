#include "standin/Call.h"

#include "standin/HostObject.h"
#include "standin/Services.h"

#include <utility>

namespace standin {

constinit thread_local Services* Call::s_Current = nullptr;

Call::Call(Services& services, const std::string* request)
    : m_Outer(std::exchange(s_Current, &services)) {
  services.thread.store(std::this_thread::get_id(), std::memory_order_relaxed);
  services.request = request;
}

Call::~Call() {
  Services& services = *std::exchange(s_Current, m_Outer);
  HostObject::Destroy(std::exchange(services.released, nullptr));
}

}  // namespace standin
