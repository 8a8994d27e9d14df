#include "standin/Services.h"

#include "standin/OwnOf.h"

#include <cstring>
#include <utility>

namespace standin {

namespace {

thread_local Services* s_Current = nullptr;

}  // namespace

Services::Scope::Scope(Services& services) : m_Previous(std::exchange(s_Current, &services)) {}

Services::Scope::~Scope() {
  Services& services = *std::exchange(s_Current, m_Previous);
  if (m_Previous) return;
  while (Remains* remains = services.dead) {
    services.dead = remains->next;
    remains->destroy(remains);
  }
}

Services::Services(Observer& sink, std::optional<std::string> root)
    : observer(sink), m_ImageRoot(std::move(root)) {}

Services& Services::Of(IInstanceManager& im) { return OwnOf<Services>(im, "an instance manager"); }

Services* Services::Current() { return s_Current; }

bool Services::Fails(Factory factory) {
  return s_Current && s_Current->faults[static_cast<std::size_t>(factory)];
}

bool Services::GetInstance(const char* guid, void** out) {
  const bool known =
      m_ImageRoot && std::strcmp(guid, "{311BE68F-E34E-4ED2-9D6F-39AC29384C02}") == 0;
  *out = known ? static_cast<IHostPaths*>(this) : nullptr;
  return known;
}

const std::string& Services::GetRootPath() { return *m_ImageRoot; }

unsigned long Services::GetOutputForRoom(unsigned long roomId, int kind) {
  const auto room = rooms.find(roomId);
  return kind == 2 && room != rooms.end() ? room->second : 0;
}

}  // namespace standin
