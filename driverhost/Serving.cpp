#include "driverhost/Serving.h"

#include "driverhost/Readiness.h"

#include <unistd.h>

#include <exception>

namespace driverhost {

Serving::Serving(const HttpOptions& options, int interrupt, Life& life, Traffic& traffic,
                 Verdict& verdict)
    : m_Interrupt(m_Loop, dup(interrupt)),
      m_Page(m_Loop, options, verdict, [this, &life](const Step& step) {
        if (!m_Ends) m_Ends = !life.Deliver(m_Step, step);
        if (m_Ends) m_Loop.stop();
        return !m_Ends;
      }) {
  traffic.Add(*this);
  traffic.Add(m_Page);
  m_Interrupt.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                         [this](boost::system::error_code) {
                           m_Ends = true;
                           m_Loop.stop();
                         });
}

Serving::~Serving() {
  m_Ends = true;
  try {
    m_Loop.restart();
    m_Loop.poll();
  } catch (const std::exception&) {  // what cannot be sent any more is lost
  }
}

void Serving::OnStep(unsigned long number, const Step&) { m_Step = number; }

bool Serving::Until(std::chrono::steady_clock::time_point time) {
  // What has come is served even when the time is over.
  m_Loop.poll();
  if (!m_Ends) m_Loop.run_until(time);
  return !m_Ends;
}

bool Serving::UntilReadable(int descriptor) {
  Readiness readiness(m_Loop, descriptor);
  m_Readable = false;
  readiness.Wait([this] { m_Readable = true; });
  while (!m_Readable && !m_Ends) m_Loop.run_one();
  return !m_Ends;
}

}  // namespace driverhost
