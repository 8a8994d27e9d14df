#include "driverhost/run/Step.h"

#include "driverhost/io/FileContent.h"
#include "session/ReadLine.h"

#include <chrono>
#include <stdexcept>

namespace driverhost {

namespace {

const auto s_ProgramBegan = std::chrono::steady_clock::now();

}  // namespace

std::string NameOfMessage(const session::Action& action) {
  if (const auto* notify = std::get_if<session::Notify>(&action)) return "notify " + notify->name;
  if (const auto* command = std::get_if<session::Command>(&action))
    return "command " + command->name;
  if (const auto* request = std::get_if<session::Request>(&action))
    return "request " + request->name;
  return {};
}

double SecondsSinceStart() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - s_ProgramBegan).count();
}

Step ReadStep(const session::LineSplitter::Line& line, From from, const std::string& source,
              const std::filesystem::path* folder) {
  if (line.tooLong) throw std::runtime_error("longer than 64 MiB");
  Step step;
  step.text = line.text;
  session::ReadFile readFile;
  if (folder) {
    readFile = [folder](const std::string& path) {
      return ReadFile(*folder / path, session::s_LargestFile);
    };
  }
  step.line = session::ReadLine(line.text, readFile);
  step.from = from;
  step.source = source;
  step.place = line.number;
  return step;
}

}  // namespace driverhost
