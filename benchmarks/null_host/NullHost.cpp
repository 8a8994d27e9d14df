#include "benchmarks/null_host/NullHost.h"

#include "host/Base64Encoder.h"
#include "host/FlexMode.h"
#include "host/LogXMessage.h"
#include "host/ToString.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"

#include <dlfcn.h>

#include <stdexcept>

using null_host::s_Calls;
using null_host::s_Handlers;

namespace null_host {

unsigned long s_Calls = 0;
Handlers s_Handlers;

namespace {

const std::string s_Text = "a fixed text";

class Node final : public TqXML::INode {
 public:
  unsigned long AddRef() override { return ++s_Calls; }
  void AddNamedValue(const std::string&, const char*) override { ++s_Calls; }
  void AddNamedValue(const std::string&, const std::string&) override { ++s_Calls; }
  void AddNamedValue(const std::string&, bool) override { ++s_Calls; }
  std::string GetXmlString() const override { return ++s_Calls, s_Text; }
  void SetNameValue(const std::string&, const std::string&) override { ++s_Calls; }
  unsigned long Release() override { return ++s_Calls; }
} s_Node;

class Document final : public TqXML::IDocument {
 public:
  unsigned long AddRef() override { return ++s_Calls; }
  unsigned long Release() override { return ++s_Calls; }
  TqXML::INode& GetRootNode() override { return ++s_Calls, s_Node; }
} s_Document;

class Services final : public IInstanceManager, public IRoomOutputs {
 public:
  bool GetInstance(const char*, void**) override { return false; }
  unsigned long GetOutputForRoom(unsigned long, int) override { return ++s_Calls; }
} s_Services;

CmdMessage s_Command;
BindMessage s_Bound(s_Text);

}  // namespace

tq::auto_com<ICmdMessage> CmdMessage::Clone() const {
  ++s_Calls;
  return tq::auto_com<ICmdMessage>(&s_Command);
}

TqBaseProxyDriver& MakeDriver(const char* plugin) {
  void* library = dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
  if (!library) throw std::runtime_error(dlerror());
  const auto entry = reinterpret_cast<CreationFunc (*)()>(dlsym(library, "GetCreationFunc"));
  if (!entry) throw std::runtime_error(dlerror());
  s_Handlers = {};
  return static_cast<TqBaseProxyDriver&>(*entry()(s_Services));
}

}  // namespace null_host

using null_host::s_Command;
using null_host::s_Node;
using null_host::s_Text;

void NtfDispatcher::RegisterNtf(const std::string& name, Handler handler) {
  s_Handlers.notifications.emplace_back(name, std::move(handler));
}
void NtfDispatcher::RegisterDefaultNtf(Handler handler) {
  s_Handlers.notifications.emplace_back("any_other_notification", std::move(handler));
}
void CmdDispatcher::RegisterCmd(const std::string& name, Handler handler) {
  s_Handlers.commands.emplace_back(name, std::move(handler));
}
void UICmdDispatcher::RegisterUICmd(const std::string& name, Handler handler) {
  s_Handlers.requests.emplace_back(name, std::move(handler));
}

Base64Encoder::Base64Encoder() = default;
Base64Encoder::~Base64Encoder() = default;
std::string Base64Encoder::Base64Decode(const std::string&) { return ++s_Calls, s_Text; }

FlexMode::FlexMode() = default;
FlexMode::~FlexMode() = default;
void FlexMode::SetModesList(const std::string& list) { ++s_Calls, m_List = list; }
const std::string& FlexMode::GetModesList() const { return ++s_Calls, m_List; }

void LogXMessage(unsigned int, const char*, ...) { ++s_Calls; }
std::string tq::ToString(unsigned long) { return ++s_Calls, s_Text; }

tq::auto_com<TqXML::INode> TqXML::CreateXmlNode() {
  ++s_Calls;
  return tq::auto_com<INode>(&s_Node);
}
tq::auto_com<TqXML::INode> TqXML::CreateXmlNode(const std::string&, const std::string&) {
  ++s_Calls;
  return tq::auto_com<INode>(&s_Node);
}
tq::auto_com<TqXML::IDocument> TqXML::CreateXmlDocument(const std::string&) {
  ++s_Calls;
  return tq::auto_com<IDocument>(&null_host::s_Document);
}
TqXML::INode* XmlHelper::AddChild(TqXML::INode&, const char*, const char*) {
  return ++s_Calls, &s_Node;
}

TqBaseDriver::TqBaseDriver(IInstanceManager& im, DriverMultiplicity multiplicity)
    : m_InstanceManager(im), m_Multiplicity(multiplicity) {}
TqBaseDriver::~TqBaseDriver() = default;
unsigned long TqBaseDriver::AddRef() { return ++m_References; }
unsigned long TqBaseDriver::Release() { return --m_References; }
long TqBaseDriver::Initialize(unsigned long, TqXML::INode&, TqXML::INode*) { return 0; }
tq::auto_com<TqXML::INode> TqBaseDriver::UIRequest(const ICmdMessage&) { return {}; }
void TqBaseDriver::ConSendDataToUI(const TqXML::INode&) { ++s_Calls; }
void TqBaseDriver::SendDataToUISimple(const std::string&, const std::string&) { ++s_Calls; }
void TqBaseDriver::SendCommandToRooms(const ICmdMessage&) { ++s_Calls; }
void TqBaseDriver::SendBoundCall(unsigned long, const IBindMessage&, ICmdReturn*) const {
  ++s_Calls;
}
void TqBaseDriver::FireEvent(unsigned long) { ++s_Calls; }
void TqBaseDriver::ChangeMyVariable(unsigned long, const std::string&) { ++s_Calls; }
IBindMessage* TqBaseDriver::CreateBindMessage(const ICmdMessage&) const {
  return ++s_Calls, &null_host::s_Bound;
}
tq::auto_com<ICmdMessage> TqBaseDriver::CreateCommandMessageFromXml(const std::string&) const {
  ++s_Calls;
  return tq::auto_com<ICmdMessage>(&s_Command);
}
tq::auto_com<ICmdMessage> TqBaseDriver::CreateCommandMessageFromName(const std::string&) const {
  ++s_Calls;
  return tq::auto_com<ICmdMessage>(&s_Command);
}
bool TqBaseDriver::ExtractCapability(const std::string&, std::string& value) const {
  return ++s_Calls, value = s_Text, true;
}
bool TqBaseDriver::ExtractCapability(const std::string&, bool& flag) const {
  return ++s_Calls, flag = true;
}

TqBaseProxyDriver::TqBaseProxyDriver(IInstanceManager& im, unsigned long bindingId,
                                     DriverMultiplicity multiplicity)
    : TqBaseDriver(im, multiplicity),
      m_RoomOutputs(&null_host::s_Services),
      m_BindingId(bindingId) {}
TqBaseProxyDriver::~TqBaseProxyDriver() = default;
void TqBaseProxyDriver::BoundCall(unsigned long, BindingType, const std::string&,
                                  const IBindMessage&, ICmdReturn*) {}
void TqBaseProxyDriver::OnBindingChanged(unsigned long, const std::string&, bool) { ++s_Calls; }
void TqBaseProxyDriver::ExecuteCommand(const ICmdMessage&, ICmdReturn*, unsigned long) {
  ++s_Calls;
}
bool TqBaseProxyDriver::TestCondition(const ICondMessage&, unsigned long*) { return false; }
void TqBaseProxyDriver::VmAdd(unsigned long, const std::string&, TqTypes::VariableType,
                              const std::string&, long, long, const std::string&) {}
void TqBaseProxyDriver::VmRemove(unsigned long) {}
void TqBaseProxyDriver::HandleNotification(const IBindMessage&) {}
