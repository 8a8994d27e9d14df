#pragma once

#include "driverhost/FileWatch.h"
#include "driverhost/Output.h"
#include "driverhost/Step.h"
#include "driverhost/Traffic.h"
#include "driverhost/Verdict.h"
#include "standin/Host.h"
#include "standin/Plugin.h"

#include <cstddef>
#include <optional>
#include <string>

namespace driverhost {

struct LifeOptions {
  std::string imageRoot;  // with its separator at the end
  unsigned long id = 1;
};

// The life of one driver: creation, one step after the other, destruction. Each step's traffic is
// on standard output when the step is over. What a driver throws is reported as a failure.
class Life {
 public:
  // Everything is borrowed and outlives the object.
  Life(const LifeOptions& options, const standin::Plugin& plugin, Traffic& traffic, Output& output,
       Verdict& verdict);

  // Creates and initializes the driver: step 0. Returns whether that went well.
  bool Begin();

  // Makes the call that the step stands for. Returns false when the driver threw. Requires: Begin
  // returned true.
  bool Deliver(unsigned long number, const Step& step);

  // Destroys the driver and looks for what it still holds. Needed even when Begin failed.
  void End(unsigned long number);

  // The steps that made a call into the driver, without creation and destruction.
  unsigned long Messages() const { return m_Messages; }

  // Host objects that the driver held when it was destroyed.
  std::size_t ObjectsHeld() const { return m_ObjectsHeld; }

  // The driver's host; null before Begin and after End.
  const standin::Host* Host() const { return m_Host ? &*m_Host : nullptr; }

 private:
  template <class Call>
  bool Run(unsigned long number, const Step& step, Call call);
  void EndStep();
  void CheckLedger();

  const LifeOptions& m_Options;
  const standin::Plugin& m_Plugin;
  Traffic& m_Traffic;
  Output& m_Output;
  Verdict& m_Verdict;
  std::optional<standin::Host> m_Host;
  std::optional<FileWatch> m_Watch;
  unsigned long m_Messages = 0;
  std::size_t m_ObjectsHeld = 0;
};

}  // namespace driverhost
