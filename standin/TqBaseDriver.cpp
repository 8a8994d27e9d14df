#include "host/TqBaseDriver.h"

#include "host/TqXML.h"
#include "standin/BindMessage.h"
#include "standin/CmdMessage.h"
#include "standin/Messages.h"
#include "standin/Services.h"
#include "standin/Tree.h"
#include "standin/XmlText.h"

#include <utility>

using standin::BindMessage;
using standin::CmdMessage;
using standin::Factory;
using standin::Services;

TqBaseDriver::TqBaseDriver(IInstanceManager& im, DriverMultiplicity multiplicity)
    : m_InstanceManager(im), m_Multiplicity(multiplicity) {}

TqBaseDriver::~TqBaseDriver() = default;

unsigned long TqBaseDriver::AddRef() { return ++m_References; }

unsigned long TqBaseDriver::Release() {
  const unsigned long left = --m_References;
  if (left == 0) delete this;
  return left;
}

long TqBaseDriver::Initialize(unsigned long id, TqXML::INode&, TqXML::INode*) {
  m_DeviceId = id;
  if (m_Initialized) return 1;
  RegisterVariables();
  m_Initialized = true;
  return 0;
}

tq::auto_com<TqXML::INode> TqBaseDriver::UIRequest(const ICmdMessage& request) {
  const auto* handler = m_UICmdDispatcher.Find(CmdMessage::Of(request).Name());
  return handler ? (*handler)(request) : tq::auto_com<TqXML::INode>();
}

void TqBaseDriver::ConSendDataToUI(const TqXML::INode& node) {
  Services::Of(m_InstanceManager).observer.OnUi(standin::Element::Of(node).GetXmlString());
}

void TqBaseDriver::SendDataToUISimple(const std::string& name, const std::string& value) {
  std::string xml;
  standin::AppendElement(xml, name, value);
  Services::Of(m_InstanceManager).observer.OnUi(xml);
}

void TqBaseDriver::SendCommandToRooms(const ICmdMessage& command) {
  const auto& sent = CmdMessage::Of(command);
  Services::Of(m_InstanceManager).observer.OnRooms(sent.Name(), sent.Parameters());
}

void TqBaseDriver::SendBoundCall(unsigned long bindingId, const IBindMessage& msg,
                                 ICmdReturn* ret) const {
  const auto& sent = BindMessage::Of(msg);
  Services::Of(m_InstanceManager).observer.OnDevice(bindingId, sent.Name(), sent.Parameters(), ret);
}

void TqBaseDriver::FireEvent(unsigned long eventId) {
  Services::Of(m_InstanceManager).observer.OnEvent(eventId);
}

void TqBaseDriver::ChangeMyVariable(unsigned long variableId, const std::string& value) {
  auto& services = Services::Of(m_InstanceManager);
  const auto variable = services.variables.find(variableId);
  if (variable == services.variables.end()) return;
  variable->second.value = value;
  services.observer.OnVariable(standin::Observer::Change::Changed, variableId,
                               variable->second.name, value);
}

IBindMessage* TqBaseDriver::CreateBindMessage(const ICmdMessage& command) const {
  if (Services::Fails(Factory::BindMessage)) return nullptr;
  const auto& source = CmdMessage::Of(command);
  return new BindMessage(source.Name(), source.Name(), source.Parameters(),
                         standin::WriteCommand(source));
}

tq::auto_com<ICmdMessage> TqBaseDriver::CreateCommandMessageFromXml(const std::string& xml) const {
  if (Services::Fails(Factory::CommandMessage)) return {};
  return standin::ReadCommand(xml);
}

tq::auto_com<ICmdMessage> TqBaseDriver::CreateCommandMessageFromName(
    const std::string& name) const {
  if (Services::Fails(Factory::CommandMessage)) return {};
  return standin::MakeCommand(name, {});
}

bool TqBaseDriver::ExtractCapability(const std::string& name, std::string& value) const {
  const auto& capabilities = Services::Of(m_InstanceManager).capabilities;
  const auto capability = capabilities.find(name);
  if (capability == capabilities.end()) return false;
  value = capability->second;
  return true;
}

bool TqBaseDriver::ExtractCapability(const std::string& name, bool& flag) const {
  std::string value;
  if (!ExtractCapability(name, value)) return false;
  flag = value == "True";
  return true;
}
