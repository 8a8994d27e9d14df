#pragma once

#include "driverhost/web/WebClient.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace driverhost {

// Has the lines of all clients delivered one after the other, so that never more than one of them
// stands before somebody else's.
class LineTurns {
 public:
  // Delivers a line. `done` is called when that has happened, or at once, and from the thread of
  // the turns.
  using Post = std::function<void(std::string line, std::function<void(LineAnswer)> done)>;

  explicit LineTurns(Post post) : m_Post(std::move(post)) {}

  void Enter(std::shared_ptr<WebClient> client);

  // The clients that wait, and those that come, are told that the program ends.
  void End();

 private:
  void Next();
  void Answer(LineAnswer answer);

  const Post m_Post;
  std::deque<std::shared_ptr<WebClient>> m_Waiting;
  std::shared_ptr<WebClient> m_Current;
  bool m_Ended = false;
};

}  // namespace driverhost
