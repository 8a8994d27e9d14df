#pragma once

#include "host/HostApi.h"
#include "host/ICmdMessage.h"
#include "host/ICmdReturn.h"
#include "host/IDeviceCommon.h"
#include "host/IInstanceManager.h"
#include "host/INode.h"
#include "host/ITqObject.h"
#include "host/TqTypes.h"
#include "host/auto_com.h"

#include <string>

// The interface through which the host drives a driver. The host makes its calls into one driver
// one at a time; what it passes by reference is borrowed for the call; a returned holder's
// reference passes to the host. An exception of a host operation comes back out of the call.
class HOST_API IDriver : public ITqObject {
 public:
  virtual DriverMultiplicity GetMultiplicity() = 0;

  // Called once, after creation and before any message; `state`, what GetPersistState returned
  // once, may be null. Returns 0, or what the host's base class reports as a failure.
  virtual long Initialize(unsigned long id, TqXML::INode& config, TqXML::INode* state) = 0;

  virtual void OnDriverAdded() = 0;
  virtual void OnDestroy() = 0;
  virtual void RemovedFromProject() = 0;
  virtual void OnAVRoomOff(unsigned long roomId) = 0;
  virtual const std::string& GetStringNameDriver() const = 0;
  virtual const std::string& GetStringNameProxy() const = 0;
  virtual void OnDriverNameChanged(const std::string& name) = 0;
  virtual tq::auto_com<TqXML::INode> GetCapabilities(unsigned long id) = 0;

  // The state to hand to Initialize after a restart.
  virtual tq::auto_com<TqXML::INode> GetPersistState(unsigned long id) = 0;

  virtual tq::auto_com<TqXML::INode> GetEvents() = 0;

  // Executes a command; `ret` may be null.
  virtual void ExecuteCommand(const ICmdMessage& command, ICmdReturn* ret, unsigned long flags) = 0;

  virtual tq::auto_com<TqXML::INode> GetInitializeData(unsigned long id) = 0;
  virtual bool TestCondition(const ICondMessage& condition, unsigned long* result) = 0;

  // The answer to a user-interface request, empty when there is none.
  virtual tq::auto_com<TqXML::INode> UIRequest(const ICmdMessage& request) = 0;

  virtual tq::auto_com<TqXML::INode> GetIdentifyStrings() = 0;
  virtual const std::string& GetModel() = 0;
  virtual void OnAVSelected(const AVParams& params, const AV_Class& source, const AV_Class& sink,
                            const AVLocationInfo& location, const AVDriverLocationInfo* driverInfo,
                            AVReturn& ret) = 0;
  virtual void OnAVReSelected(const AVParams& params, const AV_Class& source, const AV_Class& sink,
                              const AVLocationInfo& location,
                              const AVDriverLocationInfo* driverInfo, AVReturn& ret) = 0;
  virtual void OnAVDeselected(const AVParams& params, const AV_Class& source,
                              const AV_Class& sink) = 0;
  virtual void OnAVAddLocationInfo(const AVParams& params, const AV_Class& source,
                                   const AV_Class& sink, AVLocationInfo& location,
                                   AVDriverLocationInfo** driverInfo) = 0;
  virtual bool IsAVOutputToInputValid(const AVParams& params, const AV_Class& source,
                                      const AV_Class& sink) = 0;
  virtual bool IsAVMultiSelect(const AVParams& params, const AV_Class& source,
                               const AV_Class& sink) = 0;
  virtual bool IsAVSourceAvailable(const AVParams& params, const AV_Class& source,
                                   const AV_Class& sink) = 0;
  virtual const std::string& GetControlTag() const = 0;
  virtual void LateInitialize() = 0;
  virtual unsigned long GetDriverType() const = 0;
  virtual IDeviceCommon* GetDeviceCommon() = 0;
  virtual IDeviceIP* GetDeviceIP() = 0;
  virtual tq::auto_com<TqXML::INode> GetDeviceBindingInfo(unsigned long bindingId) = 0;

  // The text shown for an event of the driver.
  virtual std::string GetEventLabel(unsigned long eventId) const = 0;

 protected:
  ~IDriver() = default;
};

// Makes a driver with one reference, the caller's. `im` outlives it.
using CreationFunc = IDriver* (*)(IInstanceManager& im);

// The one symbol that a plug-in exports. Never null; the same on every call.
extern "C" HOST_API CreationFunc GetCreationFunc();
