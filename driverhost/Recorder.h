#pragma once

#include "driverhost/FileContent.h"
#include "driverhost/Traffic.h"

#include <chrono>
#include <string>

namespace driverhost {

// Writes the lines that are delivered as a session, each with its time, before the driver gets it.
// Files given by path are replaced by their text.
class Recorder : public TrafficSink {
 public:
  // The session starts now. Throws std::runtime_error when the file cannot be written.
  explicit Recorder(const std::string& path);

  void OnStep(unsigned long number, const Step& step) override;

  // The errno of the write that failed, after which nothing is written; 0 if none has.
  int Error() const { return m_Error; }

 private:
  const std::chrono::steady_clock::time_point m_Began = std::chrono::steady_clock::now();
  const FilePtr m_File;
  int m_Error = 0;
};

}  // namespace driverhost
