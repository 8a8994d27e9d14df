#include "fuzz/Bench.h"

#include <libxml/parser.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

const standin::Plugin& ThePlugin() {
  static const standin::Plugin plugin(MEDIA_PLUGIN);
  return plugin;
}

// In memory where there is a place for that.
class Directory {
 public:
  Directory() {
    const fs::path memory = "/dev/shm";
    path = (fs::exists(memory) ? memory : fs::temp_directory_path()) / "mediaproxy.XXXXXX";
    if (!mkdtemp(path.data())) throw std::runtime_error("no directory " + path);
    path += '/';
  }
  ~Directory() { fs::remove_all(path); }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  std::string path;
};

}  // namespace

void Require(bool holds, const char* what, const std::string& text) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n%s\n", what, text.c_str());
  std::abort();
}

XmlDocument ParseXml(const std::string& xml) {
  constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE;
  return {xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, "UTF-8", options), &xmlFreeDoc};
}

std::string RootText(const XmlDocument& document) {
  const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> text(xmlBufferCreate(), &xmlBufferFree);
  xmlNodeDump(text.get(), document.get(), xmlDocGetRootElement(document.get()), 0, 0);
  return reinterpret_cast<const char*>(xmlBufferContent(text.get()));
}

void Witness::OnUi(const std::string& xml) {
  ++documents;
  Require(ParseXml(xml) != nullptr, "a document is well-formed", xml);
}

void Witness::OnRooms(const std::string&, const standin::Params& params) {
  for (const auto& param : params) OnState(&param.value);
}

void Witness::OnAnswer(const std::string&, const std::string* xml) { OnState(xml); }

void Witness::OnState(const std::string* xml) {
  if (xml) Require(ParseXml(*xml) != nullptr, "a document is well-formed", *xml);
}

Bench::Bench() : host(ThePlugin(), witness, Root()) { host.Initialize(7); }

Bench::~Bench() {
  host.Destroy();
  Require(standin::GetLedger().Empty(), "nothing is left of a driver");
}

const std::string& Bench::Root() {
  static const Directory directory;
  return directory.path;
}
