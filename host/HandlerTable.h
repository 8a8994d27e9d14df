#pragma once

#include <string>
#include <utility>
#include <vector>

// The handlers of a dispatcher in the order of their registration. A driver registers a few dozen
// names at most, for which a walk along the rows is as fast as any map.
template <class Handler>
class HandlerTable {
 public:
  void Set(const std::string& name, Handler handler) {
    for (auto& [known, current] : m_Rows) {
      if (known == name) {
        current = std::move(handler);
        return;
      }
    }
    m_Rows.emplace_back(name, std::move(handler));
  }

  const Handler* Find(const std::string& name) const {
    for (const auto& [known, handler] : m_Rows) {
      if (known == name) return &handler;
    }
    return nullptr;
  }

 private:
  std::vector<std::pair<std::string, Handler>> m_Rows;
};
