#pragma once

#include "standin/Ledger.h"
#include "standin/Remains.h"

#include <cstddef>

namespace standin {

// Counts the objects of the whole process.
extern Ledger s_Ledger;

// The reference count of a host object, and its entry in the ledger. The count starts at 1, for the
// caller that made the object. A use after the last reference is reported for as long as Remains.h
// keeps the object.
template <class Object, class Interface>
class Counted : public Interface, private Remains {
 public:
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  unsigned long AddRef() override {
    if (m_References == 0) ReportDeadUse(m_Kind);
    return ++m_References;
  }

  unsigned long Release() override {
    if (m_References == 0) {
      ReportDeadUse(m_Kind);
      return 0;
    }
    const unsigned long left = --m_References;
    if (left == 0) {
      --(s_Ledger.*m_Kind);
      Bury(*this);
    }
    return left;
  }

 protected:
  explicit Counted(std::size_t Ledger::*kind) : Remains(&Destroy), m_Kind(kind) {
    ++(s_Ledger.*m_Kind);
  }
  // The count is above 0 when the constructor of the object throws.
  ~Counted() {
    if (m_References > 0) --(s_Ledger.*m_Kind);
  }

 private:
  static void Destroy(Remains* remains) {
    delete static_cast<Object*>(static_cast<Counted*>(remains));
  }

  std::size_t Ledger::*const m_Kind;
  unsigned long m_References = 1;
};

}  // namespace standin
