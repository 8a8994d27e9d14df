#include "driverhost/web/ObjectStore.h"

#include <algorithm>
#include <new>
#include <utility>

namespace driverhost {

namespace {

constexpr std::size_t s_MostObjects = 200000;
constexpr std::size_t s_MostBytes = std::size_t{32} << 20U;
constexpr std::size_t s_MostHeld = s_MostBytes / 2;
constexpr std::size_t s_MostNew = std::size_t{1} << 20U;
constexpr std::size_t s_ForNewReader = 10000;
constexpr std::string_view s_TooLarge = R"({"missing":1})";

ObjectStore::Object Join(std::string_view head, std::string_view rest) {
  const std::size_t size = head.size() + rest.size();
  const auto text = std::make_shared_for_overwrite<char[]>(size);
  rest.copy(text.get() + head.copy(text.get(), head.size()), rest.size());
  return {text, size};
}

}  // namespace

ObjectStore::~ObjectStore() {
  m_New.consume_all([](Object* object) { const std::unique_ptr<Object> owner(object); });
}

bool ObjectStore::Append(std::string_view head, std::string_view rest) noexcept {
  if (head.size() + rest.size() > s_MostBytes) {
    head = s_TooLarge;
    rest = {};
  }
  try {
    auto object = std::make_unique<Object>(Join(head, rest));
    m_NewBytes += object->size;
    m_New.push(object.get());
    static_cast<void>(object.release());
  } catch (const std::bad_alloc&) {
    ++m_Lost;
  }
  std::unique_lock lock(m_Mutex, std::try_to_lock);
  if (!lock && m_NewBytes > s_MostNew) lock.lock();
  if (!lock) return false;
  TakeInAll();
  return m_HeldBytes > s_MostHeld;
}

void ObjectStore::TakeInAll() {
  for (Object* object = nullptr; m_New.pop(object);) {
    const std::unique_ptr<Object> owner(object);
    m_NewBytes -= object->size;
    try {
      MakeRoom(object->size);
      m_Objects.push_back(*object);
      m_Bytes += object->size;
      ++m_End;
    } catch (const std::bad_alloc&) {
      ++m_Lost;
    }
  }
  if (m_Lost > 0) Forget();
}

// So that nothing is missing between two objects.
void ObjectStore::Forget() {
  m_End += m_Lost.exchange(0);
  m_Objects.clear();
  m_Held.clear();
  m_Bytes = 0;
  m_HeldBytes = 0;
}

void ObjectStore::MakeRoom(std::size_t size) {
  std::erase_if(m_Held, [this](const Object& object) {
    if (object.text.use_count() > 1) return false;
    m_Bytes -= object.size;
    m_HeldBytes -= object.size;
    return true;
  });
  while (m_Objects.size() == s_MostObjects ||
         (m_Bytes + size > s_MostBytes && !m_Objects.empty())) {
    Object& oldest = m_Objects.front();
    if (oldest.text.use_count() > 1) {
      m_Held.push_back(oldest);
      m_HeldBytes += oldest.size;
    } else {
      m_Bytes -= oldest.size;
    }
    m_Objects.pop_front();
  }
}

ObjectStore::Place ObjectStore::Beginning() {
  const std::lock_guard lock(m_Mutex);
  TakeInAll();
  return m_End - std::min(m_Objects.size(), s_ForNewReader);
}

std::optional<ObjectStore::Item> ObjectStore::Take(Place& place) {
  const std::lock_guard lock(m_Mutex);
  TakeInAll();
  const Place first = First();
  if (place < first) return Item{first - std::exchange(place, first), {}};
  if (place == m_End) return std::nullopt;
  return Item{0, m_Objects[static_cast<std::size_t>(place++ - first)]};
}

bool ObjectStore::IsGone(Place place) const {
  const std::lock_guard lock(m_Mutex);
  return m_HeldBytes > s_MostHeld && place <= First();
}

}  // namespace driverhost
