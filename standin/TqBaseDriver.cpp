#include "host/TqBaseDriver.h"

#include "host/TqXML.h"
#include "standin/BindMessage.h"
#include "standin/CheckedCast.h"
#include "standin/CmdMessage.h"
#include "standin/Operation.h"
#include "standin/Services.h"
#include "standin/Tree.h"
#include "standin/XmlText.h"

#include <atomic>
#include <utility>

using standin::BindMessage;
using standin::CheckedCast;
using standin::CmdMessage;
using standin::Factory;
using standin::Hint;
using standin::Operation;
using standin::Sending;
using standin::Services;

TqBaseDriver::TqBaseDriver(IInstanceManager& im, DriverMultiplicity multiplicity)
    : m_InstanceManager(im), m_Multiplicity(multiplicity) {}

TqBaseDriver::~TqBaseDriver() = default;

unsigned long TqBaseDriver::AddRef() { return ++std::atomic_ref(m_References); }

unsigned long TqBaseDriver::Release() {
  const unsigned long left = --std::atomic_ref(m_References);
  if (left == 0) delete this;
  return left;
}

long TqBaseDriver::Initialize(unsigned long id, TqXML::INode&, TqXML::INode*) {
  m_DeviceId = id;
  if (m_Initialized) return 1;
  RegisterVariables();
  m_Initialized = true;
  const Operation host(m_InstanceManager, "Initialize");
  host->variablesRegistered = true;
  return 0;
}

tq::auto_com<TqXML::INode> TqBaseDriver::UIRequest(const ICmdMessage& request) {
  const std::string& name = CheckedCast<const CmdMessage>(request, "UIRequest").Content().name;
  const auto* handler = m_UICmdDispatcher.Find(name);
  return handler ? (*handler)(request) : tq::auto_com<TqXML::INode>();
}

void TqBaseDriver::ConSendDataToUI(const TqXML::INode& node) {
  const Sending host(m_InstanceManager, "ConSendDataToUI");
  host->observer.OnUi(CheckedCast<const standin::Element>(node, "ConSendDataToUI").GetXmlString());
}

void TqBaseDriver::SendDataToUISimple(const std::string& name, const std::string& value) {
  const Sending host(m_InstanceManager, "SendDataToUISimple");
  std::string xml;
  standin::AppendElement(xml, standin::NameForDriver(name), value);
  host->observer.OnUi(xml);
}

void TqBaseDriver::SendCommandToRooms(const ICmdMessage& command) {
  const Sending host(m_InstanceManager, "SendCommandToRooms");
  const auto& sent = CheckedCast<const CmdMessage>(command, "SendCommandToRooms").Content();
  sent.ReportWhole();
  host->observer.OnRooms(sent.name, sent.params);
}

void TqBaseDriver::SendBoundCall(unsigned long bindingId, const IBindMessage& msg,
                                 ICmdReturn* ret) const {
  const Sending host(m_InstanceManager, "SendBoundCall");
  const auto& sent = CheckedCast<const BindMessage>(msg, "SendBoundCall").Content();
  sent.ReportWhole();
  if (!host->bindings.contains(bindingId)) {
    host->Tell(Hint::NoDeviceBound, "a call goes to binding " + std::to_string(bindingId) +
                                        ", where no device is bound");
  }
  host->observer.OnDevice(bindingId, sent.name, sent.params, ret);
}

void TqBaseDriver::FireEvent(unsigned long eventId) {
  const std::string label = standin::Call::Current() ? GetEventLabel(eventId) : std::string();
  const Sending host(m_InstanceManager, "FireEvent");
  host->observer.OnEvent(eventId, label);
}

void TqBaseDriver::ChangeMyVariable(unsigned long variableId, const std::string& value) {
  const Sending host(m_InstanceManager, "ChangeMyVariable");
  const auto variable = host->variables.find(variableId);
  if (variable == host->variables.end()) {
    return host->Tell(Hint::UnknownVariable, "variable " + std::to_string(variableId) +
                                                 " was changed without having been added");
  }
  variable->second.value = value;
  host->observer.OnVariable(standin::Observer::Change::Changed, variableId, variable->second.name,
                            value);
}

IBindMessage* TqBaseDriver::CreateBindMessage(const ICmdMessage& command) const {
  const Operation host(m_InstanceManager, "CreateBindMessage");
  if (Services::Fails(Factory::BindMessage)) return nullptr;
  const auto& source = CheckedCast<const CmdMessage>(command, "CreateBindMessage").Content();
  return new BindMessage(source, source.name, standin::WriteCommand(source));
}

tq::auto_com<ICmdMessage> TqBaseDriver::CreateCommandMessageFromXml(const std::string& xml) const {
  const Operation host(m_InstanceManager, "CreateCommandMessageFromXml");
  if (Services::Fails(Factory::CommandMessage)) return {};
  return standin::ReadCommand(xml);
}

tq::auto_com<ICmdMessage> TqBaseDriver::CreateCommandMessageFromName(
    const std::string& name) const {
  const Operation host(m_InstanceManager, "CreateCommandMessageFromName");
  if (Services::Fails(Factory::CommandMessage)) return {};
  return tq::auto_com<ICmdMessage>(
      new CmdMessage({name, {}, standin::MessageContent::Kind::DriversOwn}));
}

bool TqBaseDriver::ExtractCapability(const std::string& name, std::string& value) const {
  const Operation host(m_InstanceManager, "ExtractCapability");
  const auto capability = host->capabilities.find(name);
  if (capability == host->capabilities.end()) return false;
  value = capability->second;
  return true;
}

bool TqBaseDriver::ExtractCapability(const std::string& name, bool& flag) const {
  std::string value;
  if (!ExtractCapability(name, value)) return false;
  flag = value == "True";
  return true;
}
