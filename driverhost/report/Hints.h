#pragma once

#include "driverhost/io/Output.h"
#include "driverhost/run/PlayerBindings.h"
#include "driverhost/run/Traffic.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace driverhost {

// Tells what is legal in a session but probably a mistake, once for each name. Judges by what the
// driver has registered and what its handlers read.
class Hints : public TrafficSink {
 public:
  // Both are borrowed and outlive the object. `player`, which gets the traffic before the object,
  // is null where there is no player.
  explicit Hints(Console& console, const PlayerBindings* player = nullptr)
      : m_Console(console), m_Player(player) {}

  void OnStep(const Step& step) override;
  void OnRegistered(const std::vector<std::string>& registered) override;
  void OnRecord(const Step& step, const session::Record& record) override;
  void OnHint(const Step& step, const std::string& text) override;
  void OnStepEnd(const Step& step, const Reads& reads) override;

  // Whether there was a hint that --strict counts as a failure.
  bool Serious() const { return m_Serious; }

 private:
  enum class Weight { Light, Serious };

  // Tells the text unless one with the same key has been told.
  void Tell(const Step& step, const std::string& key, const std::string& text,
            Weight weight = Weight::Serious);

  void LookAtName(const Step& step, const char* kind, const std::string& name);
  void LookAtBinding(const Step& step, unsigned long id);
  void LookAtCall(const Step& step, unsigned long binding);
  void LookAtParameters(const Step& step, const Reads& reads, const std::string& name,
                        const session::Params& params);

  Console& m_Console;
  const PlayerBindings* const m_Player;
  std::map<std::string, std::vector<std::string>> m_Registered;  // names, by kind
  std::set<unsigned long> m_Bound;
  bool m_Explained = false;  // the driver has written a picture, or a line that says what is wrong
  std::set<std::pair<std::string, std::string>> m_SeenNames;  // with their kinds
  std::set<std::string> m_ToldKeys;
  bool m_Serious = false;
};

}  // namespace driverhost
