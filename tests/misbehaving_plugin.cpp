// A plug-in whose driver does to its host, on command, what no driver should.

#include "host/TqBaseProxyDriver.h"
#include "host/TqXML.h"

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

struct Foreign {};

volatile std::uintptr_t s_NoAddress = 64;
volatile int s_Result = 0;

// In the folder d: some in a new folder, one that takes a written one's place, one in a folder that moves.
void WriteFiles() {
  s_Result = std::system(
      "mkdir -p d/a/b && echo 1 >d/a/b/y && echo 1 >d/a/b/x && echo 1 >d/t && mv d/t d/u && mkdir d/m && mv d/m d/n && "
      "echo 1 >d/n/z && mkfifo d/f && : <>d/f");
}

int Overflow(int depth) {
  volatile int here = depth;
  return here == 0 ? 0 : Overflow(here + 1) + here;
}

class Misbehaving : public TqBaseProxyDriver {
 public:
  explicit Misbehaving(IInstanceManager& im) : TqBaseProxyDriver(im, 5001, DriverMultiplicity::One) {
    static constexpr struct {
      const char* name;
      void (*act)();
    } rows[] = {
        {"CRASH", [] { std::raise(SIGSEGV); }},
        {"DEREFERENCE", [] { *reinterpret_cast<volatile int*>(s_NoAddress) = 0; }},
        {"REALTIME", [] { std::raise(64); }},
        {"ABORT", [] { std::abort(); }},
        {"EXIT", [] { std::exit(0); }},
        {"LEAVE", [] { _exit(0); }},
        {"LOOP",
         [] {
           for (volatile bool on = true; on;) {
           }
         }},
        {"OVERFLOW", [] { Overflow(1); }},
        {"THROW", [] { throw Foreign(); }},
        {"THROW WORDS", [] { throw std::runtime_error("a\n\x1B" + std::string(5000, 'x')); }},
        {"WRITE", &WriteFiles},
        {"WRITE BADLY", [] { std::fclose(std::fopen("d/a\x1B", "w")); }},
        {"RELEASE", [] { TqXML::CreateXmlNode()->Release(); }},
        {"MOVE", [] { s_Result = symlink("../s", "d/m") + std::rename("d/m", "d/l"); }},
        {"HOLD", [] { TqXML::CreateXmlNode()->AddRef(); }},
    };
    for (const auto& row : rows) {
      m_CmdDispatcher.RegisterCmd(row.name, [act = row.act](const ICmdMessage&, ICmdReturn*) { act(); });
    }
  }

  void RegisterCommands() override {}
  void RegisterNotifications() override {}
  void RegisterConditionals() override {}
  void RegisterVariables() override {}
  void UnregisterVariables() override {}
};

}  // namespace

CreationFunc GetCreationFunc() {
  return [](IInstanceManager& im) -> IDriver* { return new Misbehaving(im); };
}
