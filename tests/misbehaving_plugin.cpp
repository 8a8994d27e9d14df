// A plug-in whose driver does to its host, on command, what no driver should.

#include "host/TqBaseProxyDriver.h"
#include "host/TqXML.h"

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>

namespace {

struct Foreign {};

volatile std::uintptr_t s_NoAddress = 64;

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
        {"RELEASE", [] { TqXML::CreateXmlNode()->Release(); }},
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
