#pragma once

#include "standin/Observer.h"

#include <cstddef>
#include <string>

namespace driverhost {

// Counts what comes out of the driver. By itself it shows nothing.
class Traffic : public standin::Observer {
 public:
  struct Counts {
    std::size_t documents = 0;
    std::size_t events = 0;
    std::size_t files = 0;
  };

  const Counts& Counted() const { return m_Counts; }

  // What comes from now on belongs to this step.
  virtual void BeginStep(unsigned long, const std::string& /*title*/) {}

  // The driver has written a file.
  virtual void OnFile(const std::string&) { ++m_Counts.files; }

  void OnVariable(Change, unsigned long, const std::string&, const std::string&) override {}
  void OnEvent(unsigned long) override { ++m_Counts.events; }
  void OnUi(const std::string&) override { ++m_Counts.documents; }
  void OnRooms(const std::string&, const standin::Params&) override {}
  void OnDevice(unsigned long, const std::string&, const standin::Params&,
                const ICmdReturn*) override {}
  void OnAnswer(const std::string&, const std::string*) override {}
  void OnState(const std::string*) override {}
  void OnLog(unsigned int, const std::string&) override {}

 protected:
  static const char* ChangeText(Change change) {
    return change == Change::Added ? "added" : change == Change::Changed ? "changed" : "removed";
  }

 private:
  Counts m_Counts;
};

}  // namespace driverhost
