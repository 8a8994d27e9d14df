#pragma once

#include "driverhost/Output.h"
#include "driverhost/Traffic.h"

#include <string>

namespace driverhost {

// Shows the traffic as one JSON object a line.
class JsonTraffic : public Traffic {
 public:
  // `output` outlives the object.
  explicit JsonTraffic(Output& output) : m_Output(output) {}

  void BeginStep(unsigned long number, const std::string& title) override;
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
  Output& m_Output;
  unsigned long m_Step = 0;
};

}  // namespace driverhost
