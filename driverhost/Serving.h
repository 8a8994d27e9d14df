#pragma once

#include "driverhost/HttpServer.h"
#include "driverhost/Life.h"
#include "driverhost/Page.h"
#include "driverhost/Traffic.h"
#include "driverhost/Verdict.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>

#include <chrono>

namespace driverhost {

// Serves the page while a session waits for its next line. A posted line gets the step number of
// the line before it.
class Serving : public TrafficSink {
 public:
  // `interrupt` is the descriptor of CatchInterrupts. The rest is borrowed and outlives the object.
  // Throws as Page does.
  Serving(const HttpOptions& options, int interrupt, Life& life, Traffic& traffic,
          Verdict& verdict);

  // Sends what is still on its way.
  ~Serving() override;

  Serving(const Serving&) = delete;
  Serving& operator=(const Serving&) = delete;

  // Serves until that time. Returns false when the program has to end before.
  bool Until(std::chrono::steady_clock::time_point time);

  // The same until the descriptor can be read from.
  bool UntilReadable(int descriptor);

  void OnStep(unsigned long number, const Step& step) override;

 private:
  boost::asio::io_context m_Loop;
  boost::asio::posix::stream_descriptor m_Interrupt;
  Page m_Page;
  unsigned long m_Step = 0;
  bool m_Readable = false;
  bool m_Ends = false;
};

}  // namespace driverhost
