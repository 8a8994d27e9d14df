#include "driverhost/run/Stack.h"

#include "session/Legible.h"

#include <boost/core/demangle.hpp>
#include <elfutils/libdwfl.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>

namespace driverhost {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t s_MostFrames = 40;
constexpr std::size_t s_LongestFrame = 300;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
struct SessionCloser {
  void operator()(Dwfl* session) const { dwfl_end(session); }
};
using Session = std::unique_ptr<Dwfl, SessionCloser>;

Session Open(const std::string& maps) {
  static char* noPath = nullptr;
  static const Dwfl_Callbacks callbacks = {dwfl_linux_proc_find_elf, dwfl_standard_find_debuginfo,
                                           nullptr, &noPath};
  std::string text = maps;
  const std::unique_ptr<std::FILE, FileCloser> file(fmemopen(text.data(), text.size(), "r"));
  Session session(dwfl_begin(&callbacks));
  if (!file || !session || dwfl_linux_proc_maps_report(session.get(), file.get()) != 0)
    return nullptr;
  dwfl_report_end(session.get(), nullptr, nullptr);
  return session;
}

struct Frame {
  std::string file;
  std::string text;
};

std::string Place(Dwfl_Module* module, Dwarf_Addr address) {
  Dwfl_Line* line = dwfl_module_getsrc(module, address);
  int number = 0;
  const char* source =
      line ? dwfl_lineinfo(line, nullptr, &number, nullptr, nullptr, nullptr) : nullptr;
  if (!source) return {};
  return ' ' + fs::path(source).filename().native() + ':' + std::to_string(number);
}

// Of a caller the address is that of the instruction after the call.
Frame Describe(Dwfl* session, Dwarf_Addr address, bool caller) {
  const Dwarf_Addr at = caller ? address - 1 : address;
  Dwfl_Module* module = dwfl_addrmodule(session, at);
  if (!module) return {{}, "?"};
  Dwarf_Addr start = 0;
  const char* file =
      dwfl_module_info(module, nullptr, &start, nullptr, nullptr, nullptr, nullptr, nullptr);
  const char* name = dwfl_module_addrname(module, at);
  std::ostringstream offset;
  offset << fs::path(file ? file : "?").filename().native() << "+0x" << std::hex << address - start;
  std::string text = name ? boost::core::demangle(name) : offset.str();
  return {file ? file : "", text + Place(module, at)};
}

bool IsSameFile(const std::string& one, const std::string& two) {
  std::error_code ignored;
  return fs::equivalent(one, two, ignored);
}

}  // namespace

std::vector<std::string> StackLines(const std::string& addresses, const std::string& maps,
                                    const std::string& program) {
  std::vector<std::string> lines;
  const Session session = maps.empty() ? nullptr : Open(maps);
  if (!session) return lines;
  std::istringstream words(addresses);
  words >> std::hex;
  for (Dwarf_Addr address = 0; lines.size() < s_MostFrames && words >> address;) {
    const Frame frame = Describe(session.get(), address, !lines.empty());
    if (IsSameFile(frame.file, program)) break;
    std::string line = session::Legible(frame.text, s_LongestFrame);
    if (lines.empty() || lines.back() != line) lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace driverhost
