#include "driverhost/Recorder.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace driverhost {

namespace {

using Json = nlohmann::ordered_json;

FilePtr Create(const std::string& path) {
  FilePtr file(std::fopen(path.c_str(), "wbe"));
  if (!file) throw std::runtime_error("cannot write " + path + ": " + std::strerror(errno));
  return file;
}

void PutFile(Json& text, const Step& step) {
  if (text.is_object() && text.size() == 1 && text.contains("base64_of_file")) {
    text = step.files.at(text.front().get_ref<const std::string&>());
  }
}

// The line with its files and without a time.
Json WithFiles(const Step& step) {
  Json line = Json::parse(step.text);
  line.erase("at");
  for (const auto& [key, value] : line.items()) {
    if (key != "params" && key != "capabilities") {
      PutFile(value, step);
      continue;
    }
    for (auto& text : value) PutFile(text, step);
  }
  return line;
}

// {..."at":1.234}
std::string WithTime(std::string line, std::chrono::milliseconds time) {
  char at[40];
  const long long count = time.count();
  std::snprintf(at, sizeof at, ",\"at\":%lld.%03lld}\n", count / 1000, count % 1000);
  line.pop_back();
  return line + at;
}

}  // namespace

Recorder::Recorder(const std::string& path) : m_File(Create(path)) {}

void Recorder::OnStep(unsigned long, const Step& step) {
  if (step.text.empty() || m_Error != 0) return;
  const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - m_Began);
  const std::string line = WithTime(WithFiles(step).dump(), time);
  const bool written = std::fwrite(line.data(), 1, line.size(), m_File.get()) == line.size();
  if (!written || std::fflush(m_File.get()) != 0) m_Error = errno;
}

}  // namespace driverhost
