#include "standin/Operation.h"

#include "standin/Services.h"

#include <string>
#include <thread>

namespace standin {

namespace {

void ReportThread(Services& services, const char* operation, bool benchToo) {
  const bool other = services.thread != std::this_thread::get_id();
  if (!other && benchToo) return;
  services.Tell(other ? Hint::OtherThread : Hint::OutsideCall,
                std::string(operation) + (other ? " was called from another thread than the host's"
                                                : " was called outside a call of the host's"));
}

}  // namespace

Operation::Operation(IInstanceManager& im, const char* name) : m_Services(Services::Of(im)) {
  if (Call::Current() != &m_Services) [[unlikely]]
    ReportThread(m_Services, name, false);
}

Sending::Sending(IInstanceManager& im, const char* name) : Operation(im, name) {
  if (m_Services.creating) [[unlikely]] {
    m_Services.Tell(Hint::SentInConstructor,
                    std::string(name) + " was called in the constructor, when no host can take it");
  }
}

void CheckThread(const char* operation, bool benchToo) {
  const Lock lock;
  if (Services* services = Services::Newest()) ReportThread(*services, operation, benchToo);
}

}  // namespace standin
