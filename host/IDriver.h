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

// The interface through which the host drives a driver. The order of the operations is part of the
// binary interface. The host makes its calls into one driver one at a time. What it passes is
// borrowed for the call. A returned holder passes its reference to the host, and may be empty; a
// returned reference or pointer stays the driver's. An exception of a host operation inside a call
// comes out of that call. Unless a comment says otherwise, the stand-in's base class does nothing
// and answers with nothing.
class HOST_API IDriver : public ITqObject {
 public:
  // The value that the driver gave its base class.
  virtual DriverMultiplicity GetMultiplicity() = 0;

  // Called once, after creation and before any message. `state` is what GetPersistState returned
  // earlier, or null. Returns the base class's result; in the stand-in 0, or 1 when called again.
  virtual long Initialize(unsigned long id, TqXML::INode& config, TqXML::INode* state) = 0;

  // The driver has joined a project; is about to be destroyed; has left the project.
  virtual void OnDriverAdded() = 0;
  virtual void OnDestroy() = 0;
  virtual void RemovedFromProject() = 0;

  // A room has gone off.
  virtual void OnAVRoomOff(unsigned long roomId) = 0;

  // The driver's names.
  virtual const std::string& GetStringNameDriver() const = 0;
  virtual const std::string& GetStringNameProxy() const = 0;
  virtual void OnDriverNameChanged(const std::string& name) = 0;

  // What the driver can do.
  virtual tq::auto_com<TqXML::INode> GetCapabilities(unsigned long id) = 0;

  // The state to hand to Initialize after a restart.
  virtual tq::auto_com<TqXML::INode> GetPersistState(unsigned long id) = 0;

  // The events that the driver can fire.
  virtual tq::auto_com<TqXML::INode> GetEvents() = 0;

  // Executes a command. `ret`, the place for the answer, may be null. The meaning of `flags` is up
  // to the host; drivers pass 0.
  virtual void ExecuteCommand(const ICmdMessage& command, ICmdReturn* ret, unsigned long flags) = 0;

  virtual tq::auto_com<TqXML::INode> GetInitializeData(unsigned long id) = 0;

  // Tests a condition of the driver and stores the outcome in `*result`.
  virtual bool TestCondition(const ICondMessage& condition, unsigned long* result) = 0;

  // The answer to a user-interface request, empty when there is none.
  virtual tq::auto_com<TqXML::INode> UIRequest(const ICmdMessage& request) = 0;

  // What identifies the device, and its model.
  virtual tq::auto_com<TqXML::INode> GetIdentifyStrings() = 0;
  virtual const std::string& GetModel() = 0;

  // An audio or video path between a source and a sink has been made, made again, broken; what
  // there is to know of a location; whether a path is possible. The types are the host's.
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

  // The driver's own interfaces; null where it has none, as a proxy driver has no IDeviceIP.
  virtual IDeviceCommon* GetDeviceCommon() = 0;
  virtual IDeviceIP* GetDeviceIP() = 0;

  virtual tq::auto_com<TqXML::INode> GetDeviceBindingInfo(unsigned long bindingId) = 0;

  // The text shown for an event of the driver; the base class has none.
  virtual std::string GetEventLabel(unsigned long eventId) const = 0;

 protected:
  ~IDriver() = default;
};

// Makes a driver, whose one reference the caller owns. `im` has to outlive it. A failure is thrown
// and leaves nothing behind.
using CreationFunc = IDriver* (*)(IInstanceManager& im);

// The one symbol that a plug-in exports. Never null; the same on every call.
extern "C" HOST_API CreationFunc GetCreationFunc();
