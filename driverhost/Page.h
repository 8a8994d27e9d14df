#pragma once

#include "driverhost/HttpServer.h"
#include "driverhost/Record.h"
#include "driverhost/Step.h"
#include "driverhost/Traffic.h"
#include "driverhost/Verdict.h"

#include <boost/asio/io_context.hpp>

#include <functional>
#include <optional>
#include <string>

namespace driverhost {

// The page of a driver at work: gets its traffic, and delivers the lines that are posted there.
class Page : public TrafficSink {
 public:
  // Makes the call that a posted line stands for. Returns false when the program is ending.
  using Deliver = std::function<bool(const Step&)>;

  // Says on standard error where the page is. `verdict` is borrowed and outlives the object. Throws
  // as HttpServer does.
  Page(boost::asio::io_context& loop, const HttpOptions& options, Verdict& verdict,
       Deliver deliver);

  void OnStep(unsigned long number, const Step& step) override;
  void OnRecord(const Record& record) override;

 private:
  HttpAnswer Post(const std::string& body);

  Verdict& m_Verdict;
  Deliver m_Deliver;
  HttpServer m_Server;
  unsigned long m_Step = 0;
  std::optional<std::string> m_Caused;  // while a posted line is delivered: its records
};

}  // namespace driverhost
