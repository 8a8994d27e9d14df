#include "standin/Host.h"

#include "standin/CmdMessage.h"
#include "standin/Services.h"
#include "standin/Tree.h"

#include <stdexcept>
#include <utility>

namespace standin {

Host::Host(const Plugin& plugin, Observer& observer, std::optional<std::string> imageRoot)
    : m_Services(std::make_unique<Services>(observer, std::move(imageRoot))) {
  const Services::Scope scope(*m_Services);
  const CreationFunc create = plugin.GetCreationFunc();
  if (create) m_Driver = tq::auto_com<IDriver>(create(*m_Services));
  if (!m_Driver) throw std::runtime_error("the plug-in makes no driver");
}

Host::~Host() { Destroy(); }

long Host::Initialize(unsigned long id) {
  const Services::Scope scope(*m_Services);
  const tq::auto_com<TqXML::IDocument> config(new Tree);
  config->GetRootNode().SetNameValue("config", "");
  return m_Driver->Initialize(id, config->GetRootNode(), nullptr);
}

void Host::Notify(const IBindMessage& notification) {
  const Services::Scope scope(*m_Services);
  Object().HandleNotification(notification);
}

void Host::Execute(const ICmdMessage& command, ICmdReturn* ret) {
  const Services::Scope scope(*m_Services);
  m_Driver->ExecuteCommand(command, ret, 0);
}

void Host::Request(const ICmdMessage& request) {
  const Services::Scope scope(*m_Services);
  const auto answer = m_Driver->UIRequest(request);
  const std::string xml = answer ? answer->GetXmlString() : std::string();
  m_Services->observer.OnAnswer(CmdMessage::Of(request).Name(), answer ? &xml : nullptr);
}

void Host::Bind(unsigned long bindingId, const std::string& className,
                std::map<std::string, std::string> capabilities) {
  const Services::Scope scope(*m_Services);
  m_Services->offered = std::move(capabilities);
  Object().OnBindingChanged(bindingId, className, true);
}

void Host::Unbind(unsigned long bindingId, const std::string& className) {
  const Services::Scope scope(*m_Services);
  Object().OnBindingChanged(bindingId, className, false);
}

void Host::SetRooms(std::map<unsigned long, unsigned long> outputs) {
  m_Services->rooms = std::move(outputs);
}

void Host::Persist() {
  const Services::Scope scope(*m_Services);
  const auto state = m_Driver->GetPersistState(Object().GetDeviceId());
  const std::string xml = state ? state->GetXmlString() : std::string();
  m_Services->observer.OnState(state ? &xml : nullptr);
}

void Host::Destroy() {
  const Services::Scope scope(*m_Services);
  m_Driver = {};
}

void Host::SetFault(Factory factory, bool fails) {
  m_Services->faults[static_cast<std::size_t>(factory)] = fails;
}

const std::vector<std::string>& Host::Registered() const { return m_Services->registered; }

const std::map<unsigned long, std::string>& Host::Bindings() const { return m_Services->bindings; }

IDriver& Host::Driver() { return *m_Driver; }

TqBaseProxyDriver& Host::Object() { return static_cast<TqBaseProxyDriver&>(*m_Driver); }

}  // namespace standin
