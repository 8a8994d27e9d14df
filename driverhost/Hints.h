#pragma once

#include "driverhost/Life.h"
#include "driverhost/Output.h"
#include "driverhost/Traffic.h"

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace driverhost {

// Says on standard error what is legal in a session but hardly meant, once for each name. Judges by
// what the driver has registered and what its handlers read.
class Hints : public TrafficSink {
 public:
  // Both are borrowed and outlive the object. `output` is flushed before a hint. With `playerComes`
  // a call to a device that is not bound yet is no hint.
  Hints(const Life& life, Output& output, bool playerComes = false)
      : m_Life(life), m_Output(output), m_PlayerComes(playerComes) {}

  void OnStep(unsigned long number, const Step& step) override;
  void OnRead(const std::string& parameter, bool has) override;
  void OnRecord(const Record& record) override;
  void OnStepEnd() override;

  // Whether there was a hint that --strict counts as a failure.
  bool Serious() const { return m_Serious; }

 private:
  enum class Weight { Light, Serious };

  // Prints the text unless one with the same key has been printed.
  void Tell(const std::string& key, const std::string& text, Weight weight = Weight::Serious);

  void LookAtName(const char* kind, const std::string& name);
  void LookAtBinding(unsigned long id);
  void LookAtParameters(const Notify& notify);

  const Life& m_Life;
  Output& m_Output;
  const bool m_PlayerComes;
  const Step* m_Step = nullptr;
  std::vector<std::string> m_Read;    // by the handler in this step
  std::vector<std::string> m_Lacked;  // those of them that the message lacks
  bool m_Explained = false;  // the driver has written a picture, or a line that says what is wrong
  std::set<std::pair<std::string_view, std::string>> m_Seen;  // kinds and names
  std::set<std::string> m_Told;
  bool m_Serious = false;
};

}  // namespace driverhost
