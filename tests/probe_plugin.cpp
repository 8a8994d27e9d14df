// A plug-in for tests of the stand-in. On command, its driver does what media.so never does.

#include "host/IHostPaths.h"
#include "host/LogXMessage.h"
#include "host/ToString.h"
#include "host/TqBaseProxyDriver.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"

#include <atomic>
#include <string>
#include <thread>
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
  // The image root says what the constructor does.
  explicit Probe(IInstanceManager& im) : TqBaseProxyDriver(im, 5001, DriverMultiplicity::One) {
    void* paths = nullptr;
    im.GetInstance("{311BE68F-E34E-4ED2-9D6F-39AC29384C02}", &paths);
    const std::string& root = static_cast<IHostPaths*>(paths)->GetRootPath();
    if (root == "no handler") return;
    Probe::RegisterCommands();
    m_NtfDispatcher.RegisterNtf("READ", [](const IBindMessage& msg) {
      msg.GetParamText("text");
      msg.GetParamValue("value");
    });
    m_NtfDispatcher.RegisterNtf("RELEASE", [](const IBindMessage& msg) { const_cast<IBindMessage&>(msg).Release(); });
    m_UICmdDispatcher.RegisterUICmd("READ", [this](const ICmdMessage& request) {
      ReadAll(request);
      CreateCommandMessageFromXml("<command name='OTHER'/>")->HasParam("a");
      return TqXML::CreateXmlNode();
    });
    m_UICmdDispatcher.RegisterUICmd("RELEASE", [](const ICmdMessage& request) {
      const_cast<ICmdMessage&>(request).Release();
      return Node();
    });
    if (root != "send") return;
    FireEvent(1);
    Probe::VmAdd(1, "A", TqTypes::VariableType::Text, "v", 0, 0, "");
  }

  ~Probe() override {
    m_Stop = true;
    if (m_Thread.joinable()) m_Thread.join();
  }

  // Tells what it is given, and keeps the state. The configuration says what is wrong.
  long Initialize(unsigned long id, TqXML::INode& config, TqXML::INode* state) override {
    m_State = state ? state->GetXmlString() : "none";
    LogXMessage(3, "%s %s", config.GetXmlString().c_str(), m_State.c_str());
    if (config.GetXmlString() == "<release/>") config.Release();
    if (config.GetXmlString() == "<alone/>") return 2;
    return TqBaseProxyDriver::Initialize(id, config, state);
  }
  tq::auto_com<TqXML::INode> GetPersistState(unsigned long) override {
    if (m_State == "none") return {};
    auto state = TqXML::CreateXmlNode("State", m_State);
    state->AddNamedValue("kept", "\r\xC3\xA9 <");
    return state;
  }
  void OnBindingChanged(unsigned long id, const std::string& name, bool bound) override {
    if (name != "alone") TqBaseProxyDriver::OnBindingChanged(id, name, bound);
  }
  std::string GetEventLabel(unsigned long id) const override { return id == 3 ? "three" : ""; }

 private:
  using Node = tq::auto_com<TqXML::INode>;

  void ReadAll(const ICmdMessage& message) {
    message.HasParam("has");
    message.Clone()->GetParamNumber("number");
    const tq::auto_com<IBindMessage> bound(CreateBindMessage(message));
    bound->GetParamText("text");
    bound->GetParamValue("value");
    const auto own = CreateCommandMessageFromName("OWN");
    own->AddParamText("a", "STRING", "b");
    own->HasParam("a");
    SendCommandToRooms(*own);
  }

  void RegisterCommands() override {
    static constexpr std::pair<const char*, void (*)(Probe&, const ICmdMessage&)> rows[] = {
        {"FOREIGN", [](Probe& p, const ICmdMessage&) { p.SendCommandToRooms(ForeignCommand()); }},
        {"ROUND \"TRIP\"\t\n<&>", [](Probe& p, const ICmdMessage&) { p.SendCommandToRooms(ForeignCommand()); }},
        {"ROUND \"TRIP\"\t\n<&>",
         [](Probe& p, const ICmdMessage& command) {
           const tq::auto_com<IBindMessage> bound(p.CreateBindMessage(command));
           p.SendCommandToRooms(*p.CreateCommandMessageFromXml(bound->GetXml()));
         }},
        {"CAPABILITY",
         [](Probe& p, const ICmdMessage&) {
           std::string value = "none";
           p.ExtractCapability("x", value);
           p.SendDataToUISimple("x", value);
         }},
        {"TWO CALLS",
         [](Probe& p, const ICmdMessage& command) {
           const tq::auto_com<IBindMessage> bound(p.CreateBindMessage(command));
           for (const unsigned long binding : {5002UL, 5001UL}) p.SendBoundCall(binding, *bound, nullptr);
         }},
        {"READ", [](Probe& p, const ICmdMessage& command) { p.ReadAll(command); }},
        {"EVENTS", [](Probe& p, const ICmdMessage&) { p.FireEvent(3), p.FireEvent(4); }},
        {"CHANGE", [](Probe& p, const ICmdMessage&) { p.ChangeMyVariable(77, "x"); }},
        {"REMOVE", [](Probe& p, const ICmdMessage&) { p.VmRemove(77); }},
        {"ADD", [](Probe& p, const ICmdMessage&) { p.VmAdd(1, "A", TqTypes::VariableType::Text, "v", 0, 0, ""); }},
        {"NAMES",
         [](Probe& p, const ICmdMessage&) {
           const auto node = TqXML::CreateXmlNode("a b", "");
           node->AddNamedValue("1", true);
           p.ConSendDataToUI(*node);
           p.SendDataToUISimple("", "v");
           const auto nameless = TqXML::CreateXmlNode();
           p.ConSendDataToUI(*nameless);
           nameless->AddNamedValue("c", "1");
           nameless->AddNamedValue("d", "2");
           p.ConSendDataToUI(*nameless);
         }},
        {"NO XML",
         [](Probe& p, const ICmdMessage&) {
           TqXML::CreateXmlDocument("<!DOCTYPE a [<!ENTITY e ''>]><a/>");
           p.CreateCommandMessageFromXml("<command");
           p.CreateCommandMessageFromXml("<no_command/>");
         }},
        {"RELEASE MESSAGE",
         [](Probe&, const ICmdMessage& command) {
           auto& own = const_cast<ICmdMessage&>(command);
           own.AddRef(), own.Release(), own.Release(), own.Release();
         }},
        {"RELEASE ELEMENTS",
         [](Probe&, const ICmdMessage&) {
           const auto node = TqXML::CreateXmlNode("a", "");
           auto* const child = XmlHelper::AddChild(*node, "b", "");
           child->AddRef(), child->Release(), child->Release();
           const auto document = TqXML::CreateXmlDocument("<a/>");
           const Node root(&document->GetRootNode());
         }},
        {"USE DEAD",
         [](Probe& p, const ICmdMessage& command) {
           TqXML::INode* const node = TqXML::CreateXmlNode("a", "").get();
           node->AddNamedValue("b", "c");
           p.ConSendDataToUI(*node);
           IBindMessage* const bound = p.CreateBindMessage(command);
           bound->Release();
           p.SendBoundCall(5001, *bound, nullptr);
           ICmdMessage* const clone = command.Clone().get();
           clone->HasParam("a");
           TqXML::IDocument* const document = TqXML::CreateXmlDocument("<a/>").get();
           document->GetRootNode();
         }},
        {"KEEP", [](Probe& p, const ICmdMessage&) { p.AddRef(); }},
        {"THREAD", [](Probe& p, const ICmdMessage& command) { std::thread([&] { p.UseAll(command); }).join(); }},
        {"START", [](Probe& p, const ICmdMessage&) { p.m_Thread = std::thread([&p] { p.Loop(); }); }},
        {"SHARE", [](Probe& p, const ICmdMessage&) { const Node copy = p.m_Node; }},
    };
    for (const auto& row : rows) {
      m_CmdDispatcher.RegisterCmd(
          row.first, [this, act = row.second](const ICmdMessage& command, ICmdReturn*) { act(*this, command); });
    }
  }

  // Each operation of the host's, once at least.
  void UseAll(const ICmdMessage& command) {
    FireEvent(3);
    SendDataToUISimple("a", "");
    ChangeMyVariable(77, "");
    VmAdd(77, "", TqTypes::VariableType::Text, "", 0, 0, "");
    VmRemove(77);
    std::string text;
    bool flag = false;
    ExtractCapability("", text), ExtractCapability("", flag);
    OnBindingChanged(7, "", false);
    m_NtfDispatcher.RegisterNtf("", {}), m_NtfDispatcher.RegisterDefaultNtf({});
    m_CmdDispatcher.RegisterCmd("", {}), m_UICmdDispatcher.RegisterUICmd("", {});
    LogXMessage(3, "thread");
    void* paths = nullptr;
    m_InstanceManager.GetInstance("{311BE68F-E34E-4ED2-9D6F-39AC29384C02}", &paths);
    static_cast<IHostPaths*>(paths)->GetRootPath();
    m_RoomOutputs->GetOutputForRoom(1, 2);

    command.HasParam("a"), command.GetParamNumber("a");
    const auto clone = command.Clone();
    clone->AddParamText("a", "", ""), clone->AddParamNumber("a", "", 1);
    SendCommandToRooms(*clone);
    CreateCommandMessageFromName("");
    const tq::auto_com<IBindMessage> bound(CreateBindMessage(command));
    bound->GetCommand(), bound->GetParamText("a"), bound->GetParamValue("a");
    CreateCommandMessageFromXml(bound->GetXml());
    SendBoundCall(5001, *bound, nullptr);

    const Node node = TqXML::CreateXmlNode(), copy = node;
    node->SetNameValue("a", "");
    node->AddNamedValue("a", "a"), node->AddNamedValue("a", text), node->AddNamedValue("a", flag);
    XmlHelper::AddChild(*node, "a", "");
    node->GetXmlString();
    ConSendDataToUI(*node);
    TqXML::CreateXmlDocument("<a/>")->GetRootNode();
  }

  void Loop() {
    while (!m_Stop) {
      const Node copy = m_Node;
      const auto made = TqXML::CreateXmlNode("a", "");
      FireEvent(3);
      ChangeMyVariable(1, "x");
    }
  }

  void RegisterNotifications() override {}
  void RegisterConditionals() override {}
  void RegisterVariables() override {}
  void UnregisterVariables() override {}

  std::string m_State = "none";
  const Node m_Node = TqXML::CreateXmlNode("shared", "");
  std::atomic<bool> m_Stop{false};
  std::thread m_Thread;
};

}  // namespace

CreationFunc GetCreationFunc() {
  return [](IInstanceManager& im) -> IDriver* { return new Probe(im); };
}
