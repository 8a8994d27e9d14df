#include "host/CmdDispatcher.h"
#include "host/NtfDispatcher.h"
#include "host/UICmdDispatcher.h"
#include "standin/Operation.h"
#include "standin/Services.h"

#include <utility>

namespace {

void AddToRegistered(const char* operation, const std::string& registration) {
  standin::CheckCaller(operation);
  const standin::Lock lock;
  if (auto* services = standin::Call::Current()) services->registered.push_back(registration);
}

}  // namespace

void NtfDispatcher::RegisterNtf(const std::string& name, Handler handler) {
  m_Handlers.Set(name, std::move(handler));
  AddToRegistered("NtfDispatcher::RegisterNtf", "notification " + name);
}

void NtfDispatcher::RegisterDefaultNtf(Handler handler) {
  m_Default = std::move(handler);
  AddToRegistered("NtfDispatcher::RegisterDefaultNtf", "default notification");
}

const NtfDispatcher::Handler* NtfDispatcher::Find(const std::string& name) const {
  if (const Handler* handler = m_Handlers.Find(name)) return handler;
  return m_Default ? &m_Default : nullptr;
}

void CmdDispatcher::RegisterCmd(const std::string& name, Handler handler) {
  m_Handlers.Set(name, std::move(handler));
  AddToRegistered("CmdDispatcher::RegisterCmd", "command " + name);
}

const CmdDispatcher::Handler* CmdDispatcher::Find(const std::string& name) const {
  return m_Handlers.Find(name);
}

void UICmdDispatcher::RegisterUICmd(const std::string& name, Handler handler) {
  m_Handlers.Set(name, std::move(handler));
  AddToRegistered("UICmdDispatcher::RegisterUICmd", "request " + name);
}

const UICmdDispatcher::Handler* UICmdDispatcher::Find(const std::string& name) const {
  return m_Handlers.Find(name);
}
