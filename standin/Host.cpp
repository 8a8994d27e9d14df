#include "standin/Host.h"

#include "standin/BindMessage.h"
#include "standin/CheckedCast.h"
#include "standin/CmdMessage.h"
#include "standin/Lock.h"
#include "standin/Services.h"
#include "standin/Tree.h"

#include <stdexcept>
#include <utility>

namespace standin {

namespace {

std::string TextOf(const tq::auto_com<TqXML::INode>& node) {
  return node ? node->GetXmlString() : std::string();
}

// The document of that text; `what` the text is stands in the error.
tq::auto_com<Tree> MakeDocument(const std::string& xml, const char* what) {
  const XmlContent read = ReadXml(xml);
  if (read.fault) throw std::invalid_argument(std::string(what) + ": " + read.fault);
  return tq::auto_com<Tree>(new Tree(read));
}

}  // namespace

Host::Host(const Plugin& plugin, Observer& observer, std::optional<std::string> imageRoot)
    : m_Services(std::make_unique<Services>(observer, std::move(imageRoot))) {
  const Call call(*m_Services);
  const CreationFunc create = plugin.GetCreationFunc();
  if (create) m_Driver = tq::auto_com<IDriver>(create(*m_Services));
  if (!m_Driver) throw std::runtime_error("the plug-in makes no driver");
  const Lock lock;
  m_Services->creating = false;
}

Host::~Host() { Destroy(); }

long Host::Initialize(unsigned long id, const std::string& config,
                      const std::optional<std::string>& state) {
  const Call call(*m_Services);
  const auto configuration = MakeDocument(config, "the configuration");
  const auto kept = state ? MakeDocument(*state, "the state") : tq::auto_com<Tree>();
  const long result =
      m_Driver->Initialize(id, configuration->Root(), kept ? &kept->Root() : nullptr);
  if (!m_Services->variablesRegistered) {
    m_Services->Tell(Hint::BaseNotCalled,
                     "Initialize did not call the base class's: no variables were registered");
  }
  if (!m_Services->HasHandler()) m_Services->Tell(Hint::NoHandler, "the driver has no handler");
  return result;
}

void Host::Notify(const IBindMessage& notification) {
  const Call call(*m_Services);
  const auto& message = CheckedCast<const BindMessage>(notification, "Notify");
  const HostObject::Loan loan(message);
  if (message.Fault()) m_Services->Tell(Hint::NoDocument, message.Fault());
  Object().HandleNotification(notification);
}

void Host::Execute(const ICmdMessage& command, ICmdReturn* ret) {
  const Call call(*m_Services);
  const HostObject::Loan loan(CheckedCast<const CmdMessage>(command, "Execute"));
  m_Driver->ExecuteCommand(command, ret, 0);
}

void Host::Request(const ICmdMessage& request) {
  const auto& message = CheckedCast<const CmdMessage>(request, "Request");
  const Call call(*m_Services, &message.Content().name);
  const HostObject::Loan loan(message);
  const auto answer = m_Driver->UIRequest(request);
  const std::string xml = TextOf(answer);
  const Lock lock;
  m_Services->observer.OnAnswer(message.Content().name, answer ? &xml : nullptr);
}

void Host::Bind(unsigned long bindingId, const std::string& className,
                std::map<std::string, std::string> capabilities) {
  const Call call(*m_Services);
  m_Services->offered = std::move(capabilities);
  Object().OnBindingChanged(bindingId, className, true);
  CheckBinding(bindingId, true);
}

void Host::Unbind(unsigned long bindingId, const std::string& className) {
  const Call call(*m_Services);
  Object().OnBindingChanged(bindingId, className, false);
  CheckBinding(bindingId, false);
}

void Host::CheckBinding(unsigned long bindingId, bool bound) {
  if (m_Services->bindings.contains(bindingId) == bound) return;
  m_Services->Tell(Hint::BaseNotCalled,
                   "OnBindingChanged did not call the base class's: the binding is not known");
}

void Host::SetRooms(std::map<unsigned long, unsigned long> outputs) {
  const Lock lock;
  m_Services->rooms = std::move(outputs);
}

std::optional<std::string> Host::Persist() {
  const Call call(*m_Services);
  const auto state = m_Driver->GetPersistState(Object().GetDeviceId());
  const std::string xml = TextOf(state);
  const Lock lock;
  m_Services->observer.OnState(state ? &xml : nullptr);
  if (!state) return std::nullopt;
  return xml;
}

void Host::Destroy() {
  if (!m_Driver) return;
  const Call call(*m_Services);
  m_Driver->AddRef();
  const bool referred = m_Driver->Release() > 1;
  m_Driver = {};
  const Lock lock;
  if (referred) {
    m_Services->observer.OnMisuse("a reference to the driver is never given back: it lives on");
    return;
  }
  for (const auto& [id, variable] : m_Services->variables) {
    m_Services->Tell(Hint::VariableLeft, "variable " + std::to_string(id) + ' ' + variable.name +
                                             " is still there after the driver's end");
  }
}

void Host::SetFault(Factory factory, bool fails) {
  m_Services->faults[static_cast<std::size_t>(factory)] = fails;
}

const std::vector<std::string>& Host::Registered() const { return m_Services->registered; }

const std::map<unsigned long, std::string>& Host::Bindings() const { return m_Services->bindings; }

IDriver& Host::Driver() { return *m_Driver; }

TqBaseProxyDriver& Host::Object() { return static_cast<TqBaseProxyDriver&>(*m_Driver); }

}  // namespace standin
