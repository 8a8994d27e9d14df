#include "host/TqBaseProxyDriver.h"

#include "standin/BindMessage.h"
#include "standin/CmdMessage.h"
#include "standin/Services.h"

#include <string>
#include <utility>

using standin::BindMessage;
using standin::CmdMessage;
using standin::Services;
using Change = standin::Observer::Change;

TqBaseProxyDriver::TqBaseProxyDriver(IInstanceManager& im, unsigned long bindingId,
                                     DriverMultiplicity multiplicity)
    : TqBaseDriver(im, multiplicity), m_RoomOutputs(&Services::Of(im)), m_BindingId(bindingId) {
  Services::Of(im).registered.push_back("binding " + std::to_string(bindingId));
}

TqBaseProxyDriver::~TqBaseProxyDriver() = default;

void TqBaseProxyDriver::BoundCall(unsigned long bindingId, BindingType, const std::string&,
                                  const IBindMessage& msg, ICmdReturn*) {
  if (bindingId == m_BindingId) HandleNotification(msg);
}

void TqBaseProxyDriver::OnBindingChanged(unsigned long bindingId, const std::string& className,
                                         bool bound) {
  auto& services = Services::Of(m_InstanceManager);
  if (bound) {
    services.bindings.insert_or_assign(bindingId, className);
  } else {
    services.bindings.erase(bindingId);
  }
  if (bindingId == m_BindingId && bound) services.capabilities = std::move(services.offered);
}

void TqBaseProxyDriver::ExecuteCommand(const ICmdMessage& command, ICmdReturn* ret, unsigned long) {
  const auto* handler = m_CmdDispatcher.Find(CmdMessage::Of(command).Name());
  if (handler) {
    (*handler)(command, ret);
  } else if (const tq::auto_com<IBindMessage> bound{CreateBindMessage(command)}) {
    SendBoundCall(m_BindingId, *bound, ret);
  }
}

bool TqBaseProxyDriver::TestCondition(const ICondMessage&, unsigned long*) { return false; }

void TqBaseProxyDriver::VmAdd(unsigned long id, const std::string& name, TqTypes::VariableType type,
                              const std::string& value, long first, long second,
                              const std::string& last) {
  auto& services = Services::Of(m_InstanceManager);
  services.registered.push_back(
      "variable " + std::to_string(id) + ' ' + name + ' ' + std::to_string(static_cast<int>(type)) +
      ' ' + std::to_string(first) + ' ' + std::to_string(second) + " '" + last + '\'');
  services.variables.insert_or_assign(id, Services::Variable{name, value});
  services.observer.OnVariable(Change::Added, id, name, value);
}

void TqBaseProxyDriver::VmRemove(unsigned long id) {
  auto& services = Services::Of(m_InstanceManager);
  const auto removed = services.variables.extract(id);
  if (removed.empty()) return;
  services.observer.OnVariable(Change::Removed, id, removed.mapped().name, removed.mapped().value);
}

void TqBaseProxyDriver::HandleNotification(const IBindMessage& msg) {
  if (const auto* handler = m_NtfDispatcher.Find(BindMessage::Of(msg).Name())) {
    (*handler)(msg);
  }
}
