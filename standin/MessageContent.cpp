#include "standin/MessageContent.h"

#include "standin/Call.h"
#include "standin/Lock.h"
#include "standin/Services.h"

#include <algorithm>
#include <charconv>

namespace standin {

namespace {

bool IsNumber(const std::string& text) {
  unsigned long number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

}  // namespace

const Param* MessageContent::ReadParam(Read::Accessor accessor,
                                       const std::string& parameter) const {
  const auto found = std::find_if(params.begin(), params.end(), [&parameter](const Param& other) {
    return other.name == parameter;
  });
  const Param* param = found == params.end() ? nullptr : &*found;
  Report(accessor, parameter, param);
  return param;
}

void MessageContent::Report(Read::Accessor accessor, const std::string& parameter,
                            const Param* param) const {
  Services* services = Call::Current();
  if (!services || kind == Kind::DriversOwn) return;
  const bool request = services->request && *services->request == name;
  const Lock lock;
  services->observer.OnRead(
      {kind == Kind::Notification ? Read::Message::Notification
       : request                  ? Read::Message::Request
                                  : Read::Message::Command,
       name, accessor, parameter, param ? &param->value : nullptr,
       accessor == Read::Accessor::Number && param && IsNumber(param->value)});
}

}  // namespace standin
