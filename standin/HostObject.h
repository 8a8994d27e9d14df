#pragma once

#include "standin/Call.h"
#include "standin/SharedCount.h"

#include <cstddef>

namespace standin {

struct Ledger;

// What the stand-in knows of an object that it has made for its driver: how many references there
// are, whether it is lent, and who may not use it.
class HostObject {
 public:
  enum class Kind : unsigned { Node, Document, CommandMessage, BindMessage };

  // While a Loan exists, the driver can give back only references that it has taken itself. Loans
  // of one object end in the reverse order.
  class Loan {
   public:
    explicit Loan(const HostObject& object);
    ~Loan();
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

   private:
    const HostObject& m_Object;
    const std::size_t m_Before;
  };

  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  // Objects that somebody holds, in the whole process.
  static Ledger Held();

  // Destroys an object and all that follow it. Null is allowed.
  static void Destroy(HostObject* first);

  // Reports the operation when the object has no reference any more.
  void CheckAlive(const char* operation) const {
    if (m_References.Get() == 0) [[unlikely]]
      ReportUse(operation);
  }

  // As CheckAlive; reports also a caller that may not use the host now.
  void CheckUse(const char* operation) const {
    if (!MayBeUsed()) [[unlikely]]
      ReportUse(operation);
  }

  // The driver releases an object of that kind which it has been lent.
  static void ReportBorrowedRelease(Kind kind);

  std::size_t References() const { return m_References.Get(); }

 protected:
  // The object starts with one reference, the caller's.
  explicit HostObject(Kind kind);
  virtual ~HostObject();

  // Both return the number of references afterwards. An object without references is destroyed when
  // the host's call into the driver is over, so that a use of it until then can be reported;
  // outside a call it is destroyed at once.
  std::size_t AddReference();
  std::size_t RemoveReference();

 private:
  bool MayBeUsed() const { return m_References.Get() > 0 && Call::Current(); }
  void ReportUse(const char* operation) const;

  HostObject* m_Next = nullptr;  // that was released for the last time in the same call
  const Kind m_Kind;
  SharedCount m_References{1};
  mutable SharedCount m_Lent;  // references that are not the driver's to give back
};

}  // namespace standin
