#pragma once

#include "driverhost/Output.h"
#include "driverhost/Traffic.h"

#include <string>

namespace driverhost {

// Shows the traffic as text: a line for each step, under it one line for each piece, long values
// shortened.
class TextTraffic : public Traffic {
 public:
  // `output` outlives the object.
  TextTraffic(Output& output, bool coloured) : m_Output(output), m_Coloured(coloured) {}

  void BeginStep(unsigned long number, const std::string& title) override;
  void OnFile(const std::string& path) override;
  void OnVariable(Change change, unsigned long id, const std::string& name,
                  const std::string& value) override;
  void OnEvent(unsigned long id) override;
  void OnUi(const std::string& xml) override;
  void OnRooms(const std::string& command, const standin::Params& params) override;
  void OnDevice(unsigned long binding, const std::string& command, const standin::Params& params,
                const ICmdReturn* ret) override;
  void OnAnswer(const std::string& request, const std::string* xml) override;
  void OnState(const std::string* xml) override;
  void OnLog(unsigned int level, const std::string& text) override;

 private:
  // One piece of traffic. `text` is legible.
  void WriteRow(const char* kind, const std::string& text);

  Output& m_Output;
  const bool m_Coloured;
};

}  // namespace driverhost
