#include "driverhost/Page.h"

#include "driverhost/LineSplitter.h"
#include "driverhost/StepReader.h"

#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <variant>

namespace driverhost {

namespace {

namespace http = boost::beast::http;

constexpr char s_Source[] = "page";

// The one line that is posted, without the line break that may end it.
std::string_view LineOf(std::string_view body) {
  if (body.ends_with('\n')) body.remove_suffix(1);
  if (body.ends_with('\r')) body.remove_suffix(1);
  if (body.find('\n') != std::string_view::npos) throw std::runtime_error("more than one line");
  return body;
}

}  // namespace

Page::Page(boost::asio::io_context& loop, const HttpOptions& options, Verdict& verdict,
           Deliver deliver)
    : m_Verdict(verdict),
      m_Deliver(std::move(deliver)),
      m_Server(loop, options, [this](const std::string& body) { return Post(body); }) {
  std::fprintf(stderr, "driverhost: the page is at %s\n", m_Server.Url().c_str());
}

void Page::OnStep(unsigned long number, const Step&) { m_Step = number; }

void Page::OnRecord(const Record& record) {
  if (!m_Server.HasClients() && !m_Caused) return;
  const std::string line = JsonText(record, &m_Step);
  m_Server.Send(line);
  if (m_Caused) *m_Caused += (m_Caused->empty() ? "" : ",") + line;
}

HttpAnswer Page::Post(const std::string& body) {
  Step step;
  try {
    step = ReadStep({0, LineOf(body), false}, nullptr);
  } catch (const std::runtime_error& error) {
    m_Verdict.Fail(s_Wrong, std::string(s_Source) + ": " + error.what());
    return PlainAnswer(http::status::bad_request, error.what());
  }
  step.source = s_Source;
  if (!std::holds_alternative<Execute>(step.call) && !std::holds_alternative<Request>(step.call)) {
    return PlainAnswer(http::status::forbidden, "only commands and requests are taken here");
  }
  m_Caused.emplace();
  const bool went = m_Deliver(step);
  const std::string caused = '[' + *std::exchange(m_Caused, std::nullopt) + ']';
  if (!went) return PlainAnswer(http::status::service_unavailable, "the program is ending");
  return {http::status::ok, "application/json", caused};
}

}  // namespace driverhost
