#include "driverhost/web/Page.h"

#include "driverhost/report/Trace.h"

#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <variant>

namespace driverhost {

namespace {

using Result = LineAnswer::Result;

constexpr std::size_t s_MostNames = 1000;
constexpr std::size_t s_MostCaused = std::size_t{16} << 20U;

// The one line that a client sends, without the line break that may end it.
std::string_view LineOf(std::string_view body) {
  if (body.ends_with('\n')) body.remove_suffix(1);
  if (body.ends_with('\r')) body.remove_suffix(1);
  if (body.find('\n') != std::string_view::npos) throw std::runtime_error("more than one line");
  return body;
}

}  // namespace

Page::Page(Loop& loop, const WebOptions& options, const std::string& driver, bool notify,
           Console& console, Deliver deliver)
    : m_Notify(notify),
      m_Deliver(std::move(deliver)),
      m_About{{}, driver, {}, {}, notify},
      m_ToLoop(loop.Context()),
      m_Server(options, [this](const std::string& line, Done done) {
        const auto step = std::make_shared<Step>();
        if (auto refusal = Refusal(line, *step)) return done(std::move(*refusal));
        m_ToLoop.Post([this, step, done = std::move(done)] { Take(std::move(*step), done); });
      }) {
  console.Tell("driverhost: the page is at " + m_Server.Url());
}

void Page::OnStep(const Step& step) {
  if (!step.text.empty()) m_Server.Send(TraceOf(step), {});
}

void Page::OnRegistered(const std::vector<std::string>& registered) {
  m_About.registered = registered;
  m_Server.SetAbout(m_About);
}

void Page::OnLabel(unsigned long event, const std::string& label) {
  if (m_About.labels.size() >= s_MostNames) return;
  m_About.labels[std::to_string(event)] = label;
  m_Server.SetAbout(m_About);
}

void Page::OnHint(const Step& step, const std::string& text) {
  m_Server.Send(TraceOf(step, "hint", text), {});
}

void Page::OnPrinted(const Step& step, const std::string& line) {
  m_Server.Send(TraceOf(step, "driver", line), {});
}

// A page completes what it sends from what handlers read.
void Page::Remember(const Step& step, const Reads& reads) {
  const std::size_t known = m_ReadsKnown;
  for (const Read& read : reads) {
    if (m_ReadsKnown >= s_MostNames) break;
    if (m_About.reads[NameOfMessage(step.line.action)].insert(read.name).second) ++m_ReadsKnown;
  }
  if (m_ReadsKnown > known) m_Server.SetAbout(m_About);
}

void Page::OnRecord(const Step& step, const session::Record& record) {
  m_Server.Send(TraceOf(step, record), {});
  if (!m_Done || step.from != From::Page || m_IsTooLong) return;
  m_IsTooLong = m_Caused.size() + record.Json().size() > s_MostCaused;
  if (m_IsTooLong) return m_Caused.clear();
  m_Caused += (m_Caused.empty() ? "" : ",") + record.JsonOf(step.number);
}

void Page::OnStepEnd(const Step& step, const Reads& reads) {
  Remember(step, reads);
  if (step.from != From::Page) return;
  if (m_IsTooLong)
    return Answer({Result::Unavailable, "the answer is too long; the traffic has it"});
  Answer({Result::Done, '[' + m_Caused + ']'});
}

void Page::OnEnd(const std::string& why) {
  m_Server.Send(EndObject(why), {});
  Answer({Result::Unavailable, "the driver has ended"});
}

void Page::Answer(LineAnswer answer) {
  m_IsTooLong = false;
  m_Caused.clear();
  if (const Done done = std::exchange(m_Done, {})) done(std::move(answer));
}

bool Page::IsAllowed(const Step& step) const {
  const session::Action& action = step.line.action;
  return std::holds_alternative<session::Command>(action) ||
         std::holds_alternative<session::Request>(action) ||
         (m_Notify && std::holds_alternative<session::Notify>(action));
}

std::optional<LineAnswer> Page::Refusal(const std::string& line, Step& step) const {
  try {
    step = ReadStep({0, LineOf(line), false}, From::Page, "page", nullptr);
  } catch (const std::runtime_error& error) {
    return LineAnswer{Result::Wrong, error.what()};
  }
  if (IsAllowed(step)) return std::nullopt;
  return LineAnswer{Result::Forbidden,
                    m_Notify ? "only commands, requests and notifications are taken here"
                             : "only commands and requests are taken here"};
}

void Page::Take(Step step, Done done) {
  m_Done = std::move(done);
  if (!m_Deliver(std::move(step))) Answer({Result::Unavailable, "the program is ending"});
}

}  // namespace driverhost
