#include "driverhost/Life.h"

#include "driverhost/CallGuard.h"
#include "driverhost/Count.h"
#include "standin/Ledger.h"

#include <boost/core/demangle.hpp>

#include <cxxabi.h>

#include <exception>
#include <utility>
#include <variant>

namespace driverhost {

namespace {

// Makes the call that a step stands for.
struct Delivery {
  standin::Host& host;

  void operator()(std::monostate) const {}
  void operator()(const Notify& step) const { host.Notify(*step.message); }
  void operator()(const Execute& step) const { host.Execute(*step.command); }
  void operator()(const Request& step) const { host.Request(*step.request); }
  void operator()(const Bind& step) const { host.Bind(step.id, step.className, step.capabilities); }
  void operator()(const Unbind& step) const { host.Unbind(step.id, step.className); }
  void operator()(const Rooms& step) const { host.SetRooms(step.outputs); }
  void operator()(const Persist&) const { host.Persist(); }
};

// Says what is being thrown. Requires: it is being handled.
std::string Thrown() {
  try {
    throw;
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    const std::type_info* type = abi::__cxa_current_exception_type();
    return "an exception of type " + (type ? boost::core::demangle(type->name()) : "unknown");
  }
}

}  // namespace

Life::Life(const LifeOptions& options, const standin::Plugin& plugin, Traffic& traffic,
           Output& output, Verdict& verdict)
    : m_Options(options),
      m_Plugin(plugin),
      m_Traffic(traffic),
      m_Output(output),
      m_Verdict(verdict) {}

template <class Call>
bool Life::Run(unsigned long number, const Step& step, Call call) {
  m_Traffic.BeginStep(number, step);
  std::optional<std::string> thrown;
  try {
    const CallGuard guard(number, step.title);
    call();
  } catch (...) {
    thrown = Thrown();
  }
  EndStep();
  const std::string where = "step " + std::to_string(number) + ", " + step.title + ": ";
  const std::string misuse = m_Traffic.TakeMisuse();
  if (!misuse.empty()) m_Verdict.FailDriver("in " + where + misuse);
  if (thrown) m_Verdict.FailDriver("the driver threw in " + where + *thrown);
  return !thrown;
}

bool Life::Begin() {
  Step creation;
  creation.title = "create, initialize";
  return Run(0, creation, [this] {
    m_Host.emplace(m_Plugin, m_Traffic, m_Options.imageRoot);
    m_Host->Initialize(m_Options.id);
    m_Watch.emplace(m_Options.imageRoot, "ipod/" + std::to_string(m_Options.id) + '/');
  });
}

bool Life::Deliver(unsigned long number, const Step& step) {
  if (!std::holds_alternative<Rooms>(step.call)) ++m_Messages;
  return Run(number, step, [&] { std::visit(Delivery{*m_Host}, step.call); });
}

void Life::EndStep() {
  if (m_Watch) {
    for (const std::string& path : m_Watch->Written()) m_Traffic.OnFile(m_Options.imageRoot, path);
  }
  m_Traffic.EndStep();
  m_Output.Flush();
}

void Life::End(unsigned long number) {
  m_ObjectsHeld = standin::GetLedger().Total();
  if (m_Host) {
    Step destruction;
    destruction.title = "destroy";
    Run(number, destruction, [this] { m_Host->Destroy(); });
    m_Host.reset();
  }
  CheckLedger();
}

void Life::CheckLedger() {
  const standin::Ledger ledger = standin::GetLedger();
  std::string held;
  for (const auto kind : {&standin::Ledger::nodes, &standin::Ledger::documents,
                          &standin::Ledger::commandMessages, &standin::Ledger::bindMessages}) {
    if (ledger.*kind == 0) continue;
    held += (held.empty() ? "" : ", ") + Count(ledger.*kind, standin::NameOf(kind));
  }
  if (held.empty()) return;
  m_Verdict.FailDriver("still held after the driver's destruction: " + held);
}

}  // namespace driverhost
