#pragma once

#include <boost/lockfree/queue.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

namespace driverhost {

// The newest objects, kept once for all who read them. May be used on several threads. Objects are
// numbered in the order in which they come; a place is the number of the next one to be read.
class ObjectStore {
 public:
  ObjectStore() = default;
  ~ObjectStore();
  ObjectStore(const ObjectStore&) = delete;
  ObjectStore& operator=(const ObjectStore&) = delete;

  using Place = std::uint64_t;

  struct Object {
    std::shared_ptr<const char[]> text;
    std::size_t size = 0;
  };

  // What stands at a place: so many objects that are no longer here, or an object.
  struct Item {
    std::uint64_t missing = 0;
    Object object;
  };

  // The object's text comes in two pieces. Does not wait for readers. An object for which there is
  // no room, or no memory, is missing. Returns whether readers hold so much that they have to let
  // go of it: see IsGone.
  bool Append(std::string_view head, std::string_view rest) noexcept;

  // Where a new reader begins.
  Place Beginning();

  // Moves the place on. Nothing when all has been read.
  std::optional<Item> Take(Place& place);

  // Whether the object before the place is kept for its readers alone.
  bool IsGone(Place place) const;

 private:
  // These require: the lock is held.
  Place First() const { return m_End - m_Objects.size(); }
  void TakeInAll();
  void Forget();
  void MakeRoom(std::size_t size);

  boost::lockfree::queue<Object*> m_New{1024};  // waits for somebody who has the lock
  std::atomic<std::size_t> m_NewBytes = 0;
  std::atomic<Place> m_Lost = 0;  // among the new ones
  mutable std::mutex m_Mutex;
  std::deque<Object> m_Objects;
  std::vector<Object> m_Held;  // older ones, which readers have not let go of yet
  Place m_End = 0;
  std::size_t m_Bytes = 0;      // of both
  std::size_t m_HeldBytes = 0;  // of m_Held
};

}  // namespace driverhost
