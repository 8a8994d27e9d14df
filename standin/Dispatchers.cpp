#include "host/CmdDispatcher.h"
#include "host/NtfDispatcher.h"
#include "host/UICmdDispatcher.h"
#include "standin/Services.h"

#include <utility>

namespace {

void Note(const std::string& registration) {
  if (auto* services = standin::Services::Current()) services->registered.push_back(registration);
}

}  // namespace

void NtfDispatcher::RegisterNtf(const std::string& name, Handler handler) {
  m_Handlers.Set(name, std::move(handler));
  Note("notification " + name);
}

void NtfDispatcher::RegisterDefaultNtf(Handler handler) {
  m_Default = std::move(handler);
  Note("default notification");
}

const NtfDispatcher::Handler* NtfDispatcher::Find(const std::string& name) const {
  if (const Handler* handler = m_Handlers.Find(name)) return handler;
  return m_Default ? &m_Default : nullptr;
}

void CmdDispatcher::RegisterCmd(const std::string& name, Handler handler) {
  m_Handlers.Set(name, std::move(handler));
  Note("command " + name);
}

const CmdDispatcher::Handler* CmdDispatcher::Find(const std::string& name) const {
  return m_Handlers.Find(name);
}

void UICmdDispatcher::RegisterUICmd(const std::string& name, Handler handler) {
  m_Handlers.Set(name, std::move(handler));
  Note("request " + name);
}

const UICmdDispatcher::Handler* UICmdDispatcher::Find(const std::string& name) const {
  return m_Handlers.Find(name);
}
