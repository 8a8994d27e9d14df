#include "host/TqBaseProxyDriver.h"

#include "standin/BindMessage.h"
#include "standin/CheckedCast.h"
#include "standin/CmdMessage.h"
#include "standin/Operation.h"
#include "standin/Services.h"

#include <string>
#include <utility>

using standin::BindMessage;
using standin::CheckedCast;
using standin::CmdMessage;
using standin::Hint;
using standin::Operation;
using standin::Sending;
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
  const Operation host(m_InstanceManager, "OnBindingChanged");
  if (bound) {
    host->bindings.insert_or_assign(bindingId, className);
  } else {
    host->bindings.erase(bindingId);
  }
  if (bindingId == m_BindingId && bound) host->capabilities = std::move(host->offered);
}

void TqBaseProxyDriver::ExecuteCommand(const ICmdMessage& command, ICmdReturn* ret, unsigned long) {
  const std::string& name = CheckedCast<const CmdMessage>(command, "ExecuteCommand").Content().name;
  const auto* handler = m_CmdDispatcher.Find(name);
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
  const Sending host(m_InstanceManager, "VmAdd");
  const std::string variable = "variable " + std::to_string(id) + ' ' + name;
  host->registered.push_back(variable + ' ' + std::to_string(static_cast<int>(type)) + ' ' +
                             std::to_string(first) + ' ' + std::to_string(second) + " '" + last +
                             '\'');
  if (host->variables.contains(id)) {
    host->Tell(Hint::VariableTwice, variable + " was added twice");
  }
  host->variables.insert_or_assign(id, Services::Variable{name, value});
  host->observer.OnVariable(Change::Added, id, name, value);
}

// A driver that was never initialized removes variables that were never added: that is no mistake.
void TqBaseProxyDriver::VmRemove(unsigned long id) {
  const Operation host(m_InstanceManager, "VmRemove");
  const auto removed = host->variables.extract(id);
  if (!removed.empty()) {
    const auto& [name, value] = removed.mapped();
    host->observer.OnVariable(Change::Removed, id, name, value);
  } else if (host->variablesRegistered) {
    host->Tell(Hint::UnknownVariable,
               "variable " + std::to_string(id) + " was removed without having been added");
  }
}

void TqBaseProxyDriver::HandleNotification(const IBindMessage& msg) {
  const std::string& name =
      CheckedCast<const BindMessage>(msg, "HandleNotification").Content().name;
  if (const auto* handler = m_NtfDispatcher.Find(name)) (*handler)(msg);
}
