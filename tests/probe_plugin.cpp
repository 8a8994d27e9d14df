// A plug-in whose driver does on command what media.so never does.

#include "host/TqBaseProxyDriver.h"

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
    m_CmdDispatcher.RegisterCmd("FOREIGN",
                                [this](const ICmdMessage&, ICmdReturn*) { SendCommandToRooms(ForeignCommand()); });
    m_CmdDispatcher.RegisterCmd("ROUND \"TRIP\"\t\n<&>", [this](const ICmdMessage& command, ICmdReturn*) {
      const tq::auto_com<IBindMessage> bound(CreateBindMessage(command));
      SendCommandToRooms(*CreateCommandMessageFromXml(bound->GetXml()));
    });
  }

 private:
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
