#pragma once

#include "host/HostApi.h"
#include "host/IBindMessage.h"
#include "host/IBoundDriver.h"
#include "host/ICmdMessage.h"
#include "host/ICmdReturn.h"
#include "host/IConnectionSink.h"
#include "host/IDeviceCommon.h"
#include "host/IDriver.h"
#include "host/IEventSink.h"
#include "host/IInstanceManager.h"
#include "host/INetworkBindingSink.h"
#include "host/INode.h"
#include "host/ITimerSink.h"
#include "host/IVariableSink.h"
#include "host/TqTypes.h"
#include "host/UICmdDispatcher.h"
#include "host/auto_com.h"

#include <string>

// The base of all drivers. The order of the bases and of the operations is part of the binary
// interface: the host calls by slot number through eight tables. Each operation stands once in the
// primary table, and again in the table of every interface that declares it, where a comment says
// what it does.
class HOST_API TqBaseDriver : public IBoundDriver,
                              public IConnectionSink,
                              public IDeviceCommon,
                              public IDriver,
                              public IEventSink,
                              public INetworkBindingSink,
                              public ITimerSink,
                              public IVariableSink {
 public:
  TqBaseDriver(const TqBaseDriver&) = delete;
  TqBaseDriver& operator=(const TqBaseDriver&) = delete;

  unsigned long AddRef() override;
  unsigned long Release() override;
  bool QueryInterface(const std::string& name, void** out) override;

  virtual ~TqBaseDriver();

  // The room of the device; 0 in the stand-in.
  virtual unsigned long GetRoomId() const;

  unsigned long GetDeviceId() const override;
  const std::string& GetDeviceName() const override;
  unsigned long GetDeviceType() const override;
  const std::string* GetDeviceRoomNameAddr() const override;
  const unsigned long* GetDeviceStateAddr() const override;

  // When to call these is up to the host; in the stand-in they do nothing.
  virtual void SetRoomName();
  virtual void HaveBeenIdentified();

  void LateInitialize() override;
  DriverMultiplicity GetMultiplicity() override;
  long Initialize(unsigned long id, TqXML::INode& config, TqXML::INode* state) override;
  void OnDriverAdded() override;
  void OnDestroy() override;
  void RemovedFromProject() override;
  void OnAVRoomOff(unsigned long roomId) override;
  tq::auto_com<TqXML::INode> GetIdentifyStrings() override;
  const std::string& GetModel() override;
  const std::string& GetControlTag() const override;
  const std::string& GetStringNameDriver() const override;
  const std::string& GetStringNameProxy() const override;
  void OnDriverNameChanged(const std::string& name) override;
  tq::auto_com<TqXML::INode> GetCapabilities(unsigned long id) override;
  tq::auto_com<TqXML::INode> GetPersistState(unsigned long id) override;
  tq::auto_com<TqXML::INode> GetEvents() override;
  void ExecuteCommand(const ICmdMessage& command, ICmdReturn* ret,
                      unsigned long flags) override = 0;
  tq::auto_com<TqXML::INode> GetInitializeData(unsigned long id) override;
  bool TestCondition(const ICondMessage& condition, unsigned long* result) override = 0;
  tq::auto_com<TqXML::INode> UIRequest(const ICmdMessage& request) override;
  void OnAVSelected(const AVParams& params, const AV_Class& source, const AV_Class& sink,
                    const AVLocationInfo& location, const AVDriverLocationInfo* driverInfo,
                    AVReturn& ret) override;
  void OnAVReSelected(const AVParams& params, const AV_Class& source, const AV_Class& sink,
                      const AVLocationInfo& location, const AVDriverLocationInfo* driverInfo,
                      AVReturn& ret) override;
  void OnAVDeselected(const AVParams& params, const AV_Class& source,
                      const AV_Class& sink) override;
  void OnAVAddLocationInfo(const AVParams& params, const AV_Class& source, const AV_Class& sink,
                           AVLocationInfo& location, AVDriverLocationInfo** driverInfo) override;
  bool IsAVOutputToInputValid(const AVParams& params, const AV_Class& source,
                              const AV_Class& sink) override;
  bool IsAVMultiSelect(const AVParams& params, const AV_Class& source,
                       const AV_Class& sink) override;
  bool IsAVSourceAvailable(const AVParams& params, const AV_Class& source,
                           const AV_Class& sink) override;
  unsigned long GetDriverType() const override;
  IDeviceCommon* GetDeviceCommon() override;
  IDeviceIP* GetDeviceIP() override;
  void OnRoomNameChanged(const std::string& roomName) override;
  tq::auto_com<TqXML::INode> GetDeviceBindingInfo(unsigned long bindingId) override;
  std::string GetEventLabel(unsigned long eventId) const override;

  // Creates a state variable of this driver with its first value. The meaning of the last three
  // arguments is up to the host.
  virtual void VmAdd(unsigned long id, const std::string& name, TqTypes::VariableType type,
                     const std::string& value, long, long, const std::string&) = 0;
  // Removes a state variable. An id that was never added is no error.
  virtual void VmRemove(unsigned long id) = 0;

  void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                         const std::string& value) override;
  void OnConnectionStatusChanged(unsigned long connectionId, int port, OStatus status) override;
  void OnDataIn(unsigned long connectionId, int port, const unsigned char* data,
                unsigned int size) override;
  // As the other OnDataIn, for a packet, which is borrowed.
  virtual void OnDataIn(unsigned long connectionId, int port, const ITqProtocolPacket& packet);
  void OnPoll(unsigned long connectionId, int port) override;
  void OnNetworkBound(unsigned long connectionId, long address) override;
  void OnEventFired(unsigned long driverId, unsigned long eventId) override;
  void OnTimerExpired(unsigned long timerId, long data) override;
  void OnNetworkBindingChanged(unsigned long bindingId, bool bound) override;

  // Delivers a notification from the bound device. The message is borrowed for the call.
  virtual void HandleNotification(const IBindMessage& msg) = 0;

  // The driver's constructor calls the first three and its destructor the last one. Whether and
  // when to call RegisterVariables is up to the host; the stand-in calls it in Initialize.
  virtual void RegisterCommands() = 0;
  virtual void RegisterNotifications() = 0;
  virtual void RegisterConditionals() = 0;
  virtual void RegisterVariables() = 0;
  virtual void UnregisterVariables() = 0;

 protected:
  // `im` is kept for the life of the driver.
  TqBaseDriver(IInstanceManager& im, DriverMultiplicity multiplicity);

  // Sends an element with all its values and children to the user interfaces. It is borrowed: the
  // driver may change or release it afterwards. No operation that sends something reports a
  // failure.
  void ConSendDataToUI(const TqXML::INode& node);

  // Sends one named value to the user interfaces.
  void SendDataToUISimple(const std::string& name, const std::string& value);

  // Sends a command, which is borrowed, to the host's rooms.
  void SendCommandToRooms(const ICmdMessage& command);

  // Sends a message, which is borrowed, over a binding. The bound device answers into `ret`, which
  // may be null.
  void SendBoundCall(unsigned long bindingId, const IBindMessage& msg, ICmdReturn* ret) const;

  // Fires an event of this driver.
  void FireEvent(unsigned long eventId);

  // Sets a state variable of this driver; the stand-in ignores an id that was not added.
  void ChangeMyVariable(unsigned long variableId, const std::string& value);

  // Makes a message with the command's name and parameters. The caller owns its one reference. Null
  // when the host cannot make one.
  IBindMessage* CreateBindMessage(const ICmdMessage& command) const;

  // Make a command whose one reference the caller owns: from a command's XML text, or by name and
  // without parameters. Empty when the text is no command or the host cannot make one.
  tq::auto_com<ICmdMessage> CreateCommandMessageFromXml(const std::string& xml) const;
  tq::auto_com<ICmdMessage> CreateCommandMessageFromName(const std::string& name) const;

  // Store what the bound device states about a capability and return true. If it states nothing,
  // the text form returns false; the stand-in then leaves `value` and `flag` as they are and
  // returns false from both forms. It reads "True" as true and any other text as false.
  bool ExtractCapability(const std::string& name, std::string& value) const;
  bool ExtractCapability(const std::string& name, bool& flag) const;

  IInstanceManager& m_InstanceManager;
  UICmdDispatcher m_UICmdDispatcher;

 private:
  unsigned long m_References = 1;
  DriverMultiplicity m_Multiplicity;
  bool m_Initialized = false;
  unsigned long m_DeviceId = 0;
};
