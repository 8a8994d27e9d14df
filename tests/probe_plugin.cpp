// A plug-in for tests of the stand-in. On command, its driver does what media.so never does.

#include "host/TqBaseProxyDriver.h"

#include <string>
#include <utility>

namespace {

struct ForeignCommand final : ICmdMessage {
  unsigned long AddRef() override { return 1; }
  unsigned long Release() override { return 1; }
  tq::auto_com<ICmdMessage> Clone() const override { return {}; }
  void AddParamText(const std::string&, const std::string&, const std::string&) override {}
  void AddParamNumber(const std::string&, const std::string&, unsigned long) override {}
  bool HasParam(const std::string&) const override { return false; }
  unsigned long GetParamNumber(const std::string&) const override { return 0; }
};

class Probe final : public TqBaseProxyDriver {
 public:
  explicit Probe(IInstanceManager& im) : TqBaseProxyDriver(im, 5001, DriverMultiplicity::One) {
    using Handler = void (Probe::*)(const ICmdMessage&);
    const std::pair<const char*, Handler> rows[] = {{"FOREIGN", &Probe::SendForeign},
                                                    {"ROUND \"TRIP\"\t\n<&>", &Probe::SendForeign},
                                                    {"ROUND \"TRIP\"\t\n<&>", &Probe::SendBack},
                                                    {"CAPABILITY", &Probe::SendCapability},
                                                    {"TWO CALLS", &Probe::SendTwoCalls}};
    for (const auto& row : rows) {
      m_CmdDispatcher.RegisterCmd(row.first, [this, handler = row.second](const ICmdMessage& command, ICmdReturn*) {
        (this->*handler)(command);
      });
    }
  }

 private:
  void SendForeign(const ICmdMessage&) { SendCommandToRooms(ForeignCommand()); }

  void SendBack(const ICmdMessage& command) {
    const tq::auto_com<IBindMessage> bound(CreateBindMessage(command));
    SendCommandToRooms(*CreateCommandMessageFromXml(bound->GetXml()));
  }

  void SendCapability(const ICmdMessage&) {
    std::string value = "none";
    ExtractCapability("x", value);
    SendDataToUISimple("x", value);
  }

  void SendTwoCalls(const ICmdMessage& command) {
    const tq::auto_com<IBindMessage> bound(CreateBindMessage(command));
    for (const unsigned long binding : {5002UL, 5001UL}) SendBoundCall(binding, *bound, nullptr);
  }

  void RegisterCommands() override {}
  void RegisterNotifications() override {}
  void RegisterConditionals() override {}
  void RegisterVariables() override {}
  void UnregisterVariables() override {}
};

}  // namespace

CreationFunc GetCreationFunc() {
  return [](IInstanceManager& im) -> IDriver* { return new Probe(im); };
}
