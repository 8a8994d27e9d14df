#pragma once

#include "driverhost/io/Descriptor.h"
#include "driverhost/run/Traffic.h"

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>

namespace driverhost {

// Writes the lines that are delivered as a session, each with its time, before the driver's traffic
// of it. Files given by path are replaced by their text. Keeps nothing of a line.
class Recorder : public TrafficSink {
 public:
  // Why a line could not be written. After that nothing is, and the file ends with the line before.
  using OnFailure = std::function<void(const std::string& why)>;

  // The session starts now. With `overwrite`, a file that exists is emptied. Throws
  // std::runtime_error when the file cannot be made, or when it exists and is to be kept.
  Recorder(std::string path, bool overwrite, OnFailure onFailure);

  void OnStep(const Step& step) override;

 private:
  bool Write(const std::string& line) const;

  const std::chrono::steady_clock::time_point m_Began = std::chrono::steady_clock::now();
  const std::string m_Path;
  const OnFailure m_OnFailure;
  Descriptor m_File;
  off_t m_Size = 0;
};

}  // namespace driverhost
