#pragma once

#include "host/CmdDispatcher.h"
#include "host/HostApi.h"
#include "host/IRoomOutputs.h"
#include "host/NtfDispatcher.h"
#include "host/TqBaseDriver.h"

#include <string>

// The base of drivers that stand between one bound device and the user interfaces. It hands
// notifications, commands and requests to the dispatchers, where the driver has registered its
// handlers. The order of the operations is part of the binary interface.
class HOST_API TqBaseProxyDriver : public TqBaseDriver {
 public:
  ~TqBaseProxyDriver() override;

  // Takes the bound device's message as a notification; the stand-in ignores messages of other
  // bindings.
  void BoundCall(unsigned long bindingId, BindingType type, const std::string& className,
                 const IBindMessage& msg, ICmdReturn* ret) override;

  // Takes note of the binding and of what the bound device states; an override calls this first.
  void OnBindingChanged(unsigned long bindingId, const std::string& className, bool bound) override;

  // In the stand-in, a command without a handler goes on to the bound device, parameters unchanged.
  void ExecuteCommand(const ICmdMessage& command, ICmdReturn* ret, unsigned long flags) override;

  bool TestCondition(const ICondMessage& condition, unsigned long* result) override;
  void VmAdd(unsigned long id, const std::string& name, TqTypes::VariableType type,
             const std::string& value, long, long, const std::string&) override;
  void VmRemove(unsigned long id) override;

  void HandleNotification(const IBindMessage& msg) override;

 protected:
  // `im` is kept for the life of the driver; `bindingId` is the binding to the bound device.
  TqBaseProxyDriver(IInstanceManager& im, unsigned long bindingId, DriverMultiplicity multiplicity);

  NtfDispatcher m_NtfDispatcher;
  CmdDispatcher m_CmdDispatcher;

  // Never null; lives as long as the instance manager.
  IRoomOutputs* const m_RoomOutputs;

 private:
  const unsigned long m_BindingId;
};
