#include "driverprocess/Life.h"

#include "driverprocess/Delivery.h"
#include "standin/Ledger.h"
#include "standin/Messages.h"

#include <boost/core/demangle.hpp>
#include <nlohmann/json.hpp>

#include <cxxabi.h>
#include <unistd.h>

#include <exception>
#include <stdexcept>
#include <utility>
#include <variant>

namespace driverprocess {

namespace {

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

void CheckXml(const char* key, const std::optional<std::string>& text) {
  if (text && !standin::IsXml(*text))
    throw std::runtime_error(std::string("\"") + key + "\" is no document");
}

}  // namespace

Life::Life(Connection& connection, const LifeOptions& options)
    : m_Connection(connection), m_Options(options), m_Watch(options.imageRoot) {}

// A thread that ends itself unwinds its stack, which nobody may stop.
bool Life::Call(const std::function<void()>& call) {
  try {
    call();
    return true;
  } catch (abi::__forced_unwind&) {
    throw;
  } catch (...) {
    m_Connection.Report("thrown", Thrown());
    return false;
  }
}

bool Life::Begin(const session::Start& start) {
  try {
    CheckXml("config", start.config);
    CheckXml("state", start.state);
    m_Plugin.emplace(m_Options.plugin);
  } catch (const std::exception& error) {
    m_Connection.Report("failed", error.what());
    return false;
  }
  m_Connection.Write(nlohmann::json{{"loaded", getpid()}}.dump());
  const bool created = Call([&] {
    m_Host.emplace(*m_Plugin, m_Reporter, m_Options.imageRoot);
    m_Host->Initialize(m_Options.id, start.config.value_or("<config/>"), start.state);
  });
  EndStep();
  return created;
}

bool Life::Take(const session::Action& action) {
  using Message = standin::Read::Message;
  if (const auto* notify = std::get_if<session::Notify>(&action)) {
    m_Reporter.BeginMessage(Message::Notification, notify->name);
  } else if (const auto* command = std::get_if<session::Command>(&action)) {
    m_Reporter.BeginMessage(Message::Command, command->name);
  } else if (const auto* request = std::get_if<session::Request>(&action)) {
    m_Reporter.BeginMessage(Message::Request, request->name);
  }
  const bool went = Call([&] { Deliver(*m_Host, action); });
  m_Reporter.EndMessage();
  EndStep();
  return went;
}

void Life::EndStep() {
  for (const std::string& path : m_Watch.Written()) m_Reporter.OnFile(m_Options.imageRoot, path);
  for (const std::string& what : m_Leftovers.New(m_Options.lookAlways)) {
    m_Connection.Report("hint", "the driver has left " + what);
  }
  ReportRegistered();
  m_Connection.Write(R"({"over":true})");
}

void Life::ReportRegistered() {
  if (!m_Host || m_Host->Registered().size() == m_Registered) return;
  m_Registered = m_Host->Registered().size();
  m_Connection.Write(nlohmann::json{{"registered", m_Host->Registered()}}.dump(
      -1, ' ', false, nlohmann::json::error_handler_t::replace));
}

void Life::End() {
  const std::size_t objects = standin::GetLedger().Total();
  Call([this] {
    if (m_Host) m_Host->Destroy();
    m_Host.reset();
  });
  m_Registered = 0;
  ReportHeld();
  m_Connection.Report("objects", std::to_string(objects));
  EndStep();
  m_Plugin.reset();
  for (const std::string& what : m_Leftovers.New(true)) {
    m_Connection.Report("hint", "the driver has left " + what);
  }
  m_Connection.Write(R"({"unloaded":true})");
}

void Life::ReportHeld() {
  const standin::Ledger ledger = standin::GetLedger();
  std::string held;
  for (const auto kind : {&standin::Ledger::nodes, &standin::Ledger::documents,
                          &standin::Ledger::commandMessages, &standin::Ledger::bindMessages}) {
    if (ledger.*kind == 0) continue;
    held += (held.empty() ? "" : ", ") + std::to_string(ledger.*kind) + ' ' +
            standin::NameOf(kind) + (ledger.*kind == 1 ? "" : "s");
  }
  if (!held.empty()) m_Connection.Report("held", held);
}

}  // namespace driverprocess
