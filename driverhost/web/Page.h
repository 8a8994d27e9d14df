#pragma once

#include "driverhost/io/Loop.h"
#include "driverhost/io/Output.h"
#include "driverhost/run/Traffic.h"
#include "driverhost/web/Handover.h"
#include "driverhost/web/Objects.h"
#include "driverhost/web/WebServer.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace driverhost {

// The page of a driver at work: gets its traffic, and delivers the lines that come from there.
class Page : public TrafficSink {
 public:
  // Has a line of the page's delivered, of which the page hears as of any step. Returns false when
  // the program is ending.
  using Deliver = std::function<bool(Step)>;

  // Says on the console where the page is. `deliver` is called from `loop`. With `notify`, the page
  // may send notifications too; `driver` is the plug-in's file. What is borrowed outlives the
  // object. Throws as WebServer does.
  Page(Loop& loop, const WebOptions& options, const std::string& driver, bool notify,
       Console& console, Deliver deliver);

  void OnStep(const Step& step) override;
  void OnRecord(const Step& step, const session::Record& record) override;
  void OnRegistered(const std::vector<std::string>& registered) override;
  void OnLabel(unsigned long event, const std::string& label) override;
  void OnHint(const Step& step, const std::string& text) override;
  void OnPrinted(const Step& step, const std::string& line) override;
  void OnStepEnd(const Step& step, const Reads& reads) override;
  void OnEnd(const std::string& why) override;

 private:
  using Done = std::function<void(LineAnswer)>;

  // What refuses a line; nothing when it has been read into `step`. On the server's thread, so that
  // a line that is long and wrong keeps no other waiting.
  std::optional<LineAnswer> Refusal(const std::string& line, Step& step) const;

  void Take(Step step, Done done);
  bool IsAllowed(const Step& step) const;
  void Answer(LineAnswer answer);
  void Remember(const Step& step, const Reads& reads);

  const bool m_Notify;
  const Deliver m_Deliver;
  // Of the line that is being delivered; there is never more than one.
  Done m_Done;
  std::string m_Caused;  // its records
  bool m_IsTooLong = false;
  About m_About;
  std::size_t m_ReadsKnown = 0;
  Handover m_ToLoop;
  WebServer m_Server;
};

}  // namespace driverhost
