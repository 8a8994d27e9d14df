#pragma once

#include <string>
#include <utility>
#include <vector>

// The stand-in's dispatchers keep their handlers here. Names are compared byte for byte. A driver
// registers a few dozen names at most: a walk along the rows is as fast as any map.
template <class Handler>
class HandlerTable {
 public:
  // Adds a handler, or replaces the one of that name.
  void Set(const std::string& name, Handler handler) {
    for (auto& [known, current] : m_Rows) {
      if (known == name) {
        current = std::move(handler);
        return;
      }
    }
    m_Rows.emplace_back(name, std::move(handler));
  }

  // Null when the name has no handler. Valid until the next Set.
  const Handler* Find(const std::string& name) const {
    for (const auto& [known, handler] : m_Rows) {
      if (known == name) return &handler;
    }
    return nullptr;
  }

 private:
  std::vector<std::pair<std::string, Handler>> m_Rows;
};
