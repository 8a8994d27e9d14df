#include "driverhost/report/Trace.h"

#include "session/WriteLine.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>

namespace driverhost {

namespace {

std::string Head(unsigned long step, double at) {
  char head[80];
  std::snprintf(head, sizeof head, R"({"step":%lu,"at":%.6f,)", step, at);
  return head;
}

const char* NameOf(From from) {
  constexpr std::array<const char*, 4> names = {"session", "player", "stdin", "page"};
  return names.at(static_cast<std::size_t>(from));
}

// The line without its own time; as it stands where that can be.
std::string MembersOf(const Step& step) {
  const bool plain = step.line.files.empty() && !step.line.at;
  if (plain) return step.text.substr(step.text.find('{') + 1);
  session::Line untimed = step.line;
  untimed.at.reset();
  return session::WriteLine(untimed).substr(1);
}

}  // namespace

std::string TraceOf(const Step& step) {
  return Head(step.number, step.at) + R"("from":")" + NameOf(step.from) + "\"," + MembersOf(step);
}

std::string TraceOf(const Step& step, const session::Record& record) {
  return Head(step.number, SecondsSinceStart()).append(record.Json(), 1);
}

std::string TraceOf(const Step& step, const char* key, const std::string& text) {
  using Json = nlohmann::json;
  return Head(step.number, SecondsSinceStart())
      .append(Json{{key, text}}.dump(-1, ' ', false, Json::error_handler_t::replace), 1);
}

}  // namespace driverhost
