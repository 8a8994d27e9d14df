#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace mpdplayer {

// Holds back what would add to something that is full.
class Gate {
 public:
  // Calls `go` at once, or when the gate opens.
  void Pass(std::function<void()> go) {
    if (m_Open) return go();
    m_Held.push_back(std::move(go));
  }

  void SetOpen(bool open) {
    m_Open = open;
    if (!open) return;
    for (const auto& go : std::exchange(m_Held, {})) go();
  }

 private:
  bool m_Open = true;
  std::vector<std::function<void()>> m_Held;
};

}  // namespace mpdplayer
