#include "driverhost/Replay.h"

#include "driverhost/Interrupt.h"
#include "standin/Ledger.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <utility>
#include <variant>

namespace driverhost {

namespace {

// Makes the call that a step stands for.
struct Delivery {
  standin::Host& host;

  void operator()(const Notify& step) const { host.Notify(*step.message); }
  void operator()(const Execute& step) const { host.Execute(*step.command); }
  void operator()(const Request& step) const { host.Request(*step.request); }
  void operator()(const Bind& step) const { host.Bind(step.id, step.className, step.capabilities); }
  void operator()(const Unbind& step) const { host.Unbind(step.id, step.className); }
  void operator()(const Rooms& step) const { host.SetRooms(step.outputs); }
  void operator()(const Persist&) const { host.Persist(); }
};

}  // namespace

Replay::Replay(const ReplayOptions& options, const standin::Plugin& plugin, Session& session,
               Traffic& traffic, Output& output)
    : m_Options(options),
      m_Plugin(plugin),
      m_Session(session),
      m_Traffic(traffic),
      m_Output(output) {}

int Replay::Run() {
  const auto start = std::chrono::steady_clock::now();
  Attempt([this] { Create(); });
  if (m_Status == s_Ran) Attempt([this] { PlayRounds(); });
  m_Kept.clear();
  m_Figures.lines = std::max(m_Step, m_Session.Lines());
  m_Figures.objectsHeld = standin::GetLedger().Total();
  Destroy();
  m_Figures.seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  m_Figures.traffic = m_Traffic.Counted();
  CheckLedger();
  CheckOutput();
  return m_Status;
}

template <class Work>
void Replay::Attempt(Work work) {
  try {
    work();
  } catch (const SessionError& error) {
    Fail(s_Wrong, error.what());
  } catch (const std::exception& error) {
    FailCall(error.what());
  } catch (...) {
    FailCall("an exception of no known type");
  }
}

// The first failure decides the status.
void Replay::Fail(ExitStatus status, const std::string& what) {
  EndStep();
  std::fprintf(stderr, "%s\n", what.c_str());
  if (m_Status == s_Ran) m_Status = status;
}

void Replay::FailCall(const std::string& what) {
  Fail(s_Failed, "driverhost: the driver threw in step " + std::to_string(m_Step) + ": " + what);
}

bool Replay::Stopped() const { return Interrupted() || m_Output.Error() != 0; }

void Replay::Create() {
  BeginStep(0, "create, initialize");
  m_Host = std::make_unique<standin::Host>(m_Plugin, m_Traffic, m_Options.imageRoot);
  m_Host->Initialize(m_Options.id);
  m_Watch.emplace(m_Options.imageRoot + "ipod/" + std::to_string(m_Options.id));
  EndStep();
}

void Replay::PlayFirstRound() {
  while (!Stopped()) {
    std::optional<Step> step = m_Session.Next();
    if (!step) break;
    RunStep(*step, step->line);
    if (m_Options.repeat > 1) m_Kept.push_back(std::move(*step));
  }
}

void Replay::PlayRounds() {
  PlayFirstRound();
  const unsigned long lines = m_Session.Lines();
  for (unsigned long round = 1; round < m_Options.repeat && !Stopped(); ++round) {
    for (const Step& step : m_Kept) {
      if (Stopped()) return;
      RunStep(step, round * lines + step.line);
    }
    m_Step = (round + 1) * lines;
  }
}

void Replay::RunStep(const Step& step, unsigned long number) {
  BeginStep(number, step.title);
  if (!std::holds_alternative<Rooms>(step.call)) ++m_Figures.messages;
  std::visit(Delivery{*m_Host}, step.call);
  EndStep();
}

void Replay::BeginStep(unsigned long number, const std::string& title) {
  m_Step = number;
  m_Traffic.BeginStep(number, title);
}

void Replay::EndStep() {
  if (m_Watch) {
    for (const std::string& path : m_Watch->Written()) m_Traffic.OnFile(path);
  }
  m_Output.Flush();
}

void Replay::Destroy() {
  if (!m_Host) return;
  BeginStep(m_Figures.lines + 1, "destroy");
  m_Host->Destroy();
  EndStep();
  m_Host.reset();
}

void Replay::CheckLedger() {
  const standin::Ledger ledger = standin::GetLedger();
  if (ledger.Empty()) return;
  const std::pair<std::size_t, const char*> kinds[] = {
      {ledger.nodes, "nodes"},
      {ledger.documents, "documents"},
      {ledger.commandMessages, "command messages"},
      {ledger.bindMessages, "bind messages"},
  };
  std::string held;
  for (const auto& [count, kind] : kinds) {
    if (count == 0) continue;
    held += (held.empty() ? "" : ", ") + std::to_string(count) + ' ' + kind;
  }
  Fail(s_Failed, "driverhost: still held after the driver's destruction: " + held);
}

// Who closes the pipe has seen enough; that is no failure.
void Replay::CheckOutput() {
  const int error = m_Output.Error();
  if (error == 0 || error == EPIPE) return;
  Fail(s_Failed,
       std::string("driverhost: cannot write to standard output: ") + std::strerror(error));
}

}  // namespace driverhost
