#include "standin/Services.h"

#include "standin/Lock.h"
#include "standin/Operation.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace standin {

namespace {

std::vector<Services*> s_All;

}  // namespace

Services::Services(Observer& sink, std::optional<std::string> root)
    : observer(sink), m_ImageRoot(std::move(root)) {
  const Lock lock;
  s_All.push_back(this);
}

Services::~Services() {
  const Lock lock;
  std::erase(s_All, this);
}

Services& Services::Of(IInstanceManager& im) {
  if (typeid(im) == typeid(Services)) return static_cast<Services&>(im);
  throw std::logic_error("the driver was made with an instance manager that is not the host's");
}

Services* Services::Newest() { return s_All.empty() ? nullptr : s_All.back(); }

bool Services::Fails(Factory factory) {
  const Services* services = Call::Current();
  return services && services->faults[static_cast<std::size_t>(factory)];
}

void Services::Tell(Hint hint, const std::string& what) {
  const Lock lock;
  observer.OnHint(hint, what);
}

bool Services::HasHandler() const {
  return std::any_of(registered.begin(), registered.end(), [](const std::string& line) {
    return !line.starts_with("binding ") && !line.starts_with("variable ");
  });
}

bool Services::GetInstance(const char* guid, void** out) {
  CheckCaller("IInstanceManager::GetInstance");
  const bool known =
      m_ImageRoot && std::strcmp(guid, "{311BE68F-E34E-4ED2-9D6F-39AC29384C02}") == 0;
  *out = known ? static_cast<IHostPaths*>(this) : nullptr;
  return known;
}

const std::string& Services::GetRootPath() {
  CheckCaller("IHostPaths::GetRootPath");
  return *m_ImageRoot;
}

unsigned long Services::GetOutputForRoom(unsigned long roomId, int kind) {
  CheckCaller("IRoomOutputs::GetOutputForRoom");
  const Lock lock;
  const auto room = rooms.find(roomId);
  return kind == 2 && room != rooms.end() ? room->second : 0;
}

}  // namespace standin
