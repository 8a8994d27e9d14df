#pragma once

#include "standin/Ledger.h"

#include <cstddef>

namespace standin {

// The process's counts of objects handed out.
extern Ledger s_Ledger;

// The reference count of a host object, which starts with its maker's reference, and its entry in
// the ledger.
template <class Object, class Interface>
class Counted : public Interface {
 public:
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  unsigned long AddRef() override { return ++m_References; }

  unsigned long Release() override {
    const unsigned long left = --m_References;
    if (left == 0) delete static_cast<Object*>(this);
    return left;
  }

 protected:
  explicit Counted(std::size_t Ledger::*kind) : m_Kind(kind) { ++(s_Ledger.*m_Kind); }
  ~Counted() { --(s_Ledger.*m_Kind); }

 private:
  std::size_t Ledger::*const m_Kind;
  unsigned long m_References = 1;
};

}  // namespace standin
