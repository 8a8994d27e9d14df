#pragma once

#include "standin/Call.h"
#include "standin/Lock.h"

class IInstanceManager;

namespace standin {

class Services;

// An operation of the base classes while the driver uses it. The observer hears of one that is used
// on another thread than the host's call, or outside a call. No other operation runs meanwhile.
class Operation {
 public:
  // `name` is the operation's own. The services have to be the stand-in's: for any others this
  // throws std::logic_error.
  Operation(IInstanceManager& im, const char* name);

  Services* operator->() const { return &m_Services; }

 protected:
  const Lock m_Lock;
  Services& m_Services;
};

// An operation that sends something. The observer hears of one that is used in the constructor.
class Sending : public Operation {
 public:
  Sending(IInstanceManager& im, const char* name);
};

// What Operation reports, for operations that are not a driver's own: the observer of the newest
// host hears of them. With `benchToo`, the host's own thread may use the operation outside a call.
void CheckThread(const char* operation, bool benchToo = false);

inline void CheckCaller(const char* operation) {
  if (!Call::Current()) [[unlikely]]
    CheckThread(operation);
}

}  // namespace standin
