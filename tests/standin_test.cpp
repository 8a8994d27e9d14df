#include "host/Base64Encoder.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>

TEST(Node, KeepsTheOrderOfAdding) {
  const auto node = TqXML::CreateXmlNode("a", "");
  EXPECT_EQ(node->GetXmlString(), "<a/>");
  auto* b = XmlHelper::AddChild(*node, "b", "");
  auto* c = XmlHelper::AddChild(*b, "c", "v");
  EXPECT_EQ(b->GetXmlString(), "<b><c>v</c></b>");
  node->AddNamedValue("d", true);
  EXPECT_EQ(c->GetXmlString(), "<c>v</c>");
  EXPECT_EQ(node->GetXmlString(), "<a><b><c>v</c></b><d>True</d></a>");

  // Now to elements that already have others after them.
  c->AddNamedValue("e", "1");
  auto* f = XmlHelper::AddChild(*b, "f", "");
  f->AddNamedValue("g", "2");
  XmlHelper::AddChild(*f, "h", "3")->AddNamedValue("i", "");
  c->AddNamedValue("j", false);
  f->AddNamedValue("k", "4");
  auto* l = XmlHelper::AddChild(*node, "l", "");
  EXPECT_EQ(f->GetXmlString(), "<f><g>2</g><h>3<i/></h><k>4</k></f>");
  EXPECT_EQ(node->GetXmlString(), "<a><b><c>v<e>1</e><j>False</j></c>" + f->GetXmlString() + "</b><d>True</d><l/></a>");
  l->AddNamedValue("m", "5");
  b->AddNamedValue("n", "6");
  l->AddNamedValue("o", "7");
  EXPECT_EQ(node->GetXmlString(), "<a><b><c>v<e>1</e><j>False</j></c>" + f->GetXmlString() +
                                      "<n>6</n></b><d>True</d><l><m>5</m><o>7</o></l></a>");
}

TEST(Document, ComesOutAsItCameInWithWhatWasAdded) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"<r/>", "<r/>", "<r><s>1</s><t><u>2</u></t></r>"},
      {"<?xml version='1.0'?><r x='&#38;' />\n", "<r x='&#38;' />", "<r x='&#38;' ><s>1</s><t><u>2</u></t></r>"},
      {"<r>a<b/></r\t>", "<r>a<b/></r\t>", "<r>a<b/><s>1</s><t><u>2</u></t></r\t>"},
      {"<!DOCTYPE r SYSTEM 'x' [<!ATTLIST r d CDATA 'v'>]><r/>", "<r/>", "<r><s>1</s><t><u>2</u></t></r>"},
  };
  for (const auto& [text, unchanged, added] : cases) {
    const auto document = TqXML::CreateXmlDocument(text);
    ASSERT_TRUE(document) << text;
    EXPECT_EQ(document->GetRootNode().GetXmlString(), unchanged);
    document->GetRootNode().AddNamedValue("s", "1");
    XmlHelper::AddChild(document->GetRootNode(), "t", "")->AddNamedValue("u", "2");
    EXPECT_EQ(document->GetRootNode().GetXmlString(), added);
    document->GetRootNode().SetNameValue("n", "<");
    EXPECT_EQ(document->GetRootNode().GetXmlString(), "<n>&lt;<s>1</s><t><u>2</u></t></n>");
  }
  for (const char* none : {"", "<r", "<r/><r/>", "<r>\xE9</r>", "<r>&e;</r>", "<!DOCTYPE r [<!ENTITY e ''>]><r/>",
                           "<!DOCTYPE r [<!ENTITY e SYSTEM 'x'>]><r/>", "<!DOCTYPE r [<!ENTITY % e ''>]><r/>",
                           "<!DOCTYPE r SYSTEM 'x'><r>&e;</r>", "<!DOCTYPE r SYSTEM 'x'><r x='&e;'/>"}) {
    EXPECT_FALSE(TqXML::CreateXmlDocument(none)) << none;
    EXPECT_FALSE(standin::IsXml(none)) << none;
  }
}

TEST(Node, LivesAsLongAsAReferenceToAnyElement) {
  tq::auto_com<TqXML::INode> child;
  {
    const auto node = TqXML::CreateXmlNode("a", "");
    auto* element = XmlHelper::AddChild(*node, "b", "x");
    element->AddRef();
    child = tq::auto_com<TqXML::INode>(element);
    const auto copy = child;
    EXPECT_EQ(copy.get(), child.get());
  }
  EXPECT_EQ(child->GetXmlString(), "<b>x</b>");
  EXPECT_EQ(standin::GetLedger().nodes, 1U);
  child = {};
  EXPECT_TRUE(standin::GetLedger().Empty());
}

TEST(Node, ReleasesADeepTreeOnASmallStack) {
  auto node = TqXML::CreateXmlNode("n", "");
  auto* inner = node.get();
  for (int i = 0; i < 200000; ++i) inner = XmlHelper::AddChild(*inner, "n", "");
  EXPECT_EQ(node->GetXmlString().size(), 200000U * 7 + 4);
  node = {};
  std::string deep;
  for (int i = 0; i < 200000; ++i) deep += "<n>";
  for (int i = 0; i < 200000; ++i) deep += "</n>";
  EXPECT_TRUE(TqXML::CreateXmlDocument(deep));
  EXPECT_TRUE(standin::GetLedger().Empty());
}

TEST(Base64, DecodesStrictlyButForBlanks) {
  const std::pair<const char*, std::string> right[] = {{"", ""},
                                                       {"QQ==", "A"},
                                                       {"QUI=", "AB"},
                                                       {"QUJD", "ABC"},
                                                       {"AAECAw==", {"\0\1\2\3", 4}},
                                                       {"QQ= =", "A"},
                                                       {" \n", ""},
                                                       {" Q U\tJ\r\nD\n", "ABC"},
                                                       {"+/+/", "\xFB\xFF\xBF"}};
  for (const auto& [text, bytes] : right) EXPECT_EQ(Base64Encoder().Base64Decode(text), bytes) << text;
  for (const char* wrong :
       {"QQ", "QQ=", "Q===", "====", "=", "QQ==QUJD", "QU=D", "QUJD*", "QU\vJD", "-_-_", "QUJ\xC3"}) {
    EXPECT_EQ(Base64Encoder().Base64Decode(wrong), "") << wrong;
  }
}

TEST(Message, WritesEveryNameAndTextAsXml) {
  const std::pair<tq::auto_com<IBindMessage>, std::string> cases[] = {
      {standin::MakeNotification("A", {}), "<A/>"},
      {standin::MakeNotification("1 \xC3\xA4:", {{"-x", ""}, {"x-1.y_Z", "\r"}, {"\xFF", ">"}}),
       "<_1____><_-x/><x-1.y_Z>&#13;</x-1.y_Z><_>&gt;</_></_1____>"},
      {standin::MakeNotificationFromXml("A", "no xml"), "no xml"},
  };
  for (const auto& [message, xml] : cases) EXPECT_EQ(message->GetXml(), xml);
  const auto twice = standin::MakeNotificationFromXml("A", "<a><p>1<q>2</q>3</p>x<p>4</p></a>");
  EXPECT_EQ(twice->GetParamText("p"), "123");
  EXPECT_EQ(twice->GetParamValue("q"), "");
}

namespace {

using Lines = std::vector<std::string>;

// Keeps all that an observer hears.
struct Witness : Recorder {
  void OnEvent(unsigned long id, const std::string& label) override {
    ++events;
    lines.push_back("event " + std::to_string(id) + ' ' + label);
  }
  void OnRooms(const std::string& command, const standin::Params& params) override {
    lines.push_back(command);
    for (const auto& param : params) lines.push_back(param.name + '|' + param.type + '|' + param.value);
  }
  void OnMisuse(const std::string& what) override { lines.push_back("misuse: " + what); }
  void OnHint(standin::Hint hint, const std::string& what) override {
    lines.push_back("hint " + std::to_string(static_cast<int>(hint)) + ": " + what);
  }
  void OnRead(const standin::Read& read) override {
    static constexpr const char* messages[] = {"notification", "command", "request"};
    static constexpr const char* accessors[] = {"text", "value", "number", "has", "whole"};
    lines.push_back(messages[static_cast<int>(read.message)] + (' ' + read.name) + ' ' +
                    accessors[static_cast<int>(read.accessor)] + ' ' + read.parameter +
                    (read.value ? '=' + *read.value : "") + (read.isNumber ? " is a number" : ""));
  }

  std::atomic<int> events = 0;
};

class Probe : public testing::Test {
 protected:
  Witness m_Recorder;
  const standin::Plugin m_Plugin{PROBE_PLUGIN};
  standin::Host m_Host{m_Plugin, m_Recorder, "/"};
};

}  // namespace

// The name is registered twice; the first handler would throw.
TEST_F(Probe, ReadsABoundCallBackAsTheCommand) {
  Cmd("ROUND \"TRIP\"\t\n<&>", {{"\"'\r\n\t ", " \"\r\n\t<", "I&\""}, {"\xFF\"", "", "INTEGER"}})(m_Host);
  m_Recorder.lines.resize(5);
  EXPECT_EQ(m_Recorder.lines,
            (Lines{"command ROUND \"TRIP\"\t\n<&> whole ", "command ROUND \"TRIP\"\t\n<&> whole ",
                   "ROUND \"TRIP\"\t\n<&>", "\"'\r\n\t |I&\"| \"\r\n\t<", "\xEF\xBF\xBD\"|INTEGER|"}));
}

TEST_F(Probe, CannotSendAnObjectOfItsOwn) { EXPECT_THROW(Cmd("FOREIGN")(m_Host), std::logic_error); }

TEST_F(Probe, HasTheCapabilitiesOfTheDeviceAtItsOwnBinding) {
  const Step ask = Cmd("CAPABILITY");
  const std::pair<unsigned long, const char*> bindings[] = {{5002, "none"}, {5001, "5001"}, {5000, "5001"}};
  for (const auto& [id, answer] : bindings) {
    m_Host.Bind(id, "", {{"x", std::to_string(id)}});
    ask(m_Host);
    EXPECT_EQ(m_Recorder.Take().back(), std::string("ui <x>") + answer + "</x>") << id;
  }
}

// Each command's traffic, with what is reported of it.
TEST_F(Probe, IsReportedWhenItErrs) {
  const std::string outside = " was called outside a call of the host's";
  const std::string other = " was called from another thread than the host's";
  const std::pair<const char*, Lines> cases[] = {
      {"EVENTS", {"event 3 three", "event 4 "}},
      {"CHANGE", {"hint 2: variable 77 was changed without having been added"}},
      {"REMOVE", {"hint 2: variable 77 was removed without having been added"}},
      {"ADD", {"added 1 A=v"}},
      {"ADD", {"hint 3: variable 1 A was added twice", "added 1 A=v"}},
      {"NAMES",
       {"hint 1: \"a b\" is no name of an element: \"a_b\" is written",
        "hint 1: \"1\" is no name of an element: \"_1\" is written", "ui <a_b><_1>True</_1></a_b>",
        "hint 1: \"\" is no name of an element: \"_\" is written", "ui <_>v</_>",
        "hint 1: \"\" is no name of an element: \"_\" is written", "ui <_/>",
        "hint 1: \"\" is no name of an element: \"_\" is written", "ui <_><c>1</c><d>2</d></_>"}},
      {"NO XML",
       {"hint 0: the XML has entities of its own: it is no document and no command",
        "hint 0: the XML is not well-formed: it is no document and no command"}},
      {"TWO CALLS",
       {"command TWO CALLS whole ", "hint 8: a call goes to binding 5002, where no device is bound",
        "device 5002 TWO CALLS", "command TWO CALLS whole ", "device 5001 TWO CALLS"}},
      {"RELEASE MESSAGE",
       {"misuse: release of a borrowed message (ICmdMessage::Release)",
        "misuse: release of a borrowed message (ICmdMessage::Release)"}},
      {"RELEASE ELEMENTS",
       {"misuse: release of a borrowed node (INode::Release)", "misuse: release of a borrowed node (INode::Release)"}},
      {"USE DEAD",
       {"misuse: a node was used or released after its last reference (INode::AddNamedValue)",
        "misuse: a node was used or released after its last reference (ConSendDataToUI)",
        "misuse: a node was used or released after its last reference (INode::GetXmlString)", "ui <a><b>c</b></a>",
        "misuse: a bind message was used or released after its last reference (SendBoundCall)",
        "command USE DEAD whole ", "device 5001 USE DEAD",
        "misuse: a command message was used or released after its last reference (ICmdMessage::HasParam)",
        "command USE DEAD has a",
        "misuse: a document was used or released after its last reference (IDocument::GetRootNode)"}},
      {"KEEP", {}},
  };
  m_Host.Initialize(1);
  m_Host.Bind(5001, "", {});
  m_Recorder.lines.clear();
  for (const auto& [command, lines] : cases) {
    Cmd(command)(m_Host);
    EXPECT_EQ(m_Recorder.Take(), lines) << command;
    EXPECT_EQ(standin::GetLedger().Total(), 1U) << command;
  }
  const std::string released = "misuse: release of a borrowed message (";
  Ntf("RELEASE")(m_Host);
  EXPECT_EQ(m_Recorder.Take(), Lines{released + "IBindMessage::Release)"});
  Req("RELEASE")(m_Host);
  EXPECT_EQ(m_Recorder.Take(), (Lines{released + "ICmdMessage::Release)", "answer RELEASE nothing"}));

  TqXML::CreateXmlNode()->SetNameValue("a", "");
  EXPECT_EQ(m_Recorder.Take(), (Lines{"hint 10: TqXML::CreateXmlNode" + outside,
                                      "hint 10: INode::SetNameValue" + outside, "hint 10: INode::Release" + outside}));
  IDriver& driver = m_Host.Driver();
  std::thread([this] { m_Host.Destroy(); }).join();
  EXPECT_EQ(m_Recorder.Take(), Lines{"misuse: a reference to the driver is never given back: it lives on"});
  static_cast<TqBaseProxyDriver&>(driver).VmRemove(1);
  EXPECT_EQ(m_Recorder.Take(), (Lines{"hint 9: VmRemove" + other, "removed 1 A=v"}));
  EXPECT_EQ(driver.Release(), 0U);
}

// Calls of another host's are not the driver's.
TEST_F(Probe, IsReportedInAnothersCall) {
  struct : Witness {
    void OnEvent(unsigned long, const std::string&) override { driver->VmAdd(2, "B", {}, "", 0, 0, ""); }
    TqBaseProxyDriver* driver = nullptr;
  } recorder;
  standin::Host newest(m_Plugin, recorder, "/");
  recorder.driver = &m_Host.Object();
  Cmd("EVENTS")(newest);
  EXPECT_EQ(m_Recorder.Take(), (Lines{"hint 10: VmAdd was called outside a call of the host's",
                                      "added 2 B=", "hint 10: VmAdd was called outside a call of the host's",
                                      "hint 3: variable 2 B was added twice", "added 2 B="}));
  TqXML::CreateXmlDocument("<a/>");
  EXPECT_EQ(m_Recorder.Take(), Lines());
  EXPECT_EQ(recorder.lines.front(), "hint 10: TqXML::CreateXmlDocument was called outside a call of the host's");
}

TEST_F(Probe, IsReportedOnAThreadOfItsOwn) {
  m_Host.Initialize(1);
  m_Recorder.lines.clear();
  Cmd("THREAD")(m_Host);
  std::set<std::string> operations, traffic;
  for (const std::string& line : m_Recorder.Take()) {
    const bool hint = line.starts_with("hint 9: ");
    hint ? operations.insert(line.substr(8, line.find(' ', 8) - 8)) : traffic.insert(line);
  }
  const std::set<std::string> all = {"ChangeMyVariable",
                                     "CmdDispatcher::RegisterCmd",
                                     "ConSendDataToUI",
                                     "CreateBindMessage",
                                     "CreateCommandMessageFromName",
                                     "CreateCommandMessageFromXml",
                                     "ExtractCapability",
                                     "FireEvent",
                                     "IBindMessage::GetCommand",
                                     "IBindMessage::GetParamText",
                                     "IBindMessage::GetParamValue",
                                     "IBindMessage::GetXml",
                                     "IBindMessage::Release",
                                     "ICmdMessage::AddParamNumber",
                                     "ICmdMessage::AddParamText",
                                     "ICmdMessage::Clone",
                                     "ICmdMessage::GetParamNumber",
                                     "ICmdMessage::HasParam",
                                     "ICmdMessage::Release",
                                     "IDocument::GetRootNode",
                                     "IDocument::Release",
                                     "IHostPaths::GetRootPath",
                                     "IInstanceManager::GetInstance",
                                     "INode::AddNamedValue",
                                     "INode::AddRef",
                                     "INode::GetXmlString",
                                     "INode::Release",
                                     "INode::SetNameValue",
                                     "IRoomOutputs::GetOutputForRoom",
                                     "LogXMessage",
                                     "NtfDispatcher::RegisterDefaultNtf",
                                     "NtfDispatcher::RegisterNtf",
                                     "OnBindingChanged",
                                     "SendBoundCall",
                                     "SendCommandToRooms",
                                     "SendDataToUISimple",
                                     "TqXML::CreateXmlDocument",
                                     "TqXML::CreateXmlNode",
                                     "UICmdDispatcher::RegisterUICmd",
                                     "VmAdd",
                                     "VmRemove",
                                     "XmlHelper::AddChild"};
  EXPECT_EQ(operations, all);
  EXPECT_TRUE(traffic.contains("event 3 ") && traffic.contains("log 3 thread"));
}

TEST_F(Probe, IsSeenReading) {
  const standin::Params params = {{"number", std::to_string(ULONG_MAX)}, {"text", "t"}, {"value", "v"}};
  const auto message = standin::MakeCommand("READ", params);
  m_Host.Request(*standin::MakeCommand("READ", {{"has", "1"}}));
  EXPECT_EQ(m_Recorder.Take(), (Lines{"request READ has has=1", "request READ number number", "request READ text text",
                                      "request READ value value", "OWN", "a|STRING|b", "command OTHER has a",
                                      "hint 1: \"\" is no name of an element: \"_\" is written", "answer READ <_/>"}));
  for (const char* number : {"", "6th", " 6", "-1", "+1", "18446744073709551616"}) {
    Cmd("READ", {{"number", number}})(m_Host);
    EXPECT_EQ(m_Recorder.Take().at(1), std::string("command READ number number=") + number);
  }
  m_Host.Execute(*message);
  EXPECT_EQ(m_Recorder.Take(),
            (Lines{"command READ has has", "command READ number number=" + std::to_string(ULONG_MAX) + " is a number",
                   "command READ text text=t", "command READ value value=v", "OWN", "a|STRING|b"}));
  Ntf("READ", {{"value", "7"}})(m_Host);
  EXPECT_EQ(m_Recorder.Take(), (Lines{"notification READ text text", "notification READ value value=7"}));
  NtfXml("READ", "<a")(m_Host);
  EXPECT_EQ(m_Recorder.Take().front(), "hint 0: the XML is not well-formed: it is no document and no command");
}

TEST(Host, HasNoVariablesBeforeItInitializes) {
  Recorder recorder;
  standin::Host host(ThePlugin(), recorder, "/");
  Ntf("ONLINE_STATUS_CHANGED", {{"online_status", "True"}})(host);
  EXPECT_EQ(recorder.lines, std::vector<std::string>{"ui <online_status>True</online_status>"});
}

TEST(Host, StartsADriverWithConfigurationAndState) {
  Witness recorder;
  const standin::Plugin plugin(PROBE_PLUGIN);
  std::optional<standin::Host> host(std::in_place, plugin, recorder, "/");
  for (const char* wrong : {"", "<a", "<!DOCTYPE a [<!ENTITY e ''>]><a/>"}) {
    EXPECT_THROW(host->Initialize(1, wrong), std::invalid_argument) << wrong;
    EXPECT_THROW(host->Initialize(1, "<a/>", wrong), std::invalid_argument) << wrong;
  }
  EXPECT_EQ(host->Persist(), std::nullopt);
  EXPECT_EQ(host->Initialize(1), 0);
  EXPECT_EQ(recorder.Take(), (Lines{"state nothing", "log 3 <config/> none"}));
  host.emplace(plugin, recorder, "/");
  EXPECT_EQ(host->Initialize(1, "<release/>"), 0);
  EXPECT_EQ(recorder.Take(), (Lines{"log 3 <release/> none", "misuse: release of a borrowed node (INode::Release)"}));
  host.emplace(plugin, recorder, "/");
  EXPECT_EQ(host->Initialize(1, " <c a='\t'><!-- --></c > ", "<s>\r</s>"), 0);
  EXPECT_EQ(recorder.Take(), Lines{"log 3 <c a='\t'><!-- --></c > <s>\r</s>"});
  const std::string state = "<State>&lt;s&gt;&#13;&lt;/s&gt;<kept>&#13;\xC3\xA9 &lt;</kept></State>";
  EXPECT_EQ(host->Persist(), state);
  host.emplace(plugin, recorder, "/");
  recorder.lines.clear();
  EXPECT_EQ(host->Initialize(1, "<alone/>", state), 2);
  EXPECT_EQ(recorder.Take(), (Lines{"log 3 <alone/> " + state,
                                    "hint 6: Initialize did not call the base class's: no variables were registered"}));
  for (const bool bound : {true, false}) {
    host->Bind(5001, bound ? "alone" : "", {});
    if (!bound) host->Unbind(5001, "alone");
    EXPECT_EQ(recorder.Take(),
              Lines{"hint 6: OnBindingChanged did not call the base class's: the binding is not known"});
  }
  host.reset();
  EXPECT_TRUE(standin::GetLedger().Empty());
}

TEST(Host, MissesHandlers) {
  Witness recorder;
  const standin::Plugin plugin(PROBE_PLUGIN);
  standin::Host host(plugin, recorder, "no handler");
  host.Object().VmAdd(1, "A", {}, "", 0, 0, "");
  host.Initialize(1);
  EXPECT_EQ(recorder.lines.back(), "hint 7: the driver has no handler");
}

TEST(Host, TellsWhatTheConstructorSendsAndTheDestructorLeaves) {
  Witness recorder;
  const standin::Plugin plugin(PROBE_PLUGIN);
  { const standin::Host host(plugin, recorder, "send"); }
  EXPECT_EQ(recorder.Take(), (Lines{"hint 5: FireEvent was called in the constructor, when no host can take it",
                                    "event 1 ", "hint 5: VmAdd was called in the constructor, when no host can take it",
                                    "added 1 A=v", "hint 4: variable 1 A is still there after the driver's end"}));
}

// What ThreadSanitizer finds nothing in.
TEST(Host, LetsADriversThreadsInOneAfterTheOther) {
  Witness recorder;
  const standin::Plugin plugin(PROBE_PLUGIN);
  standin::Host host(plugin, recorder, "/");
  host.Initialize(1);
  Cmd("START")(host);
  while (recorder.events < 1000) {
    for (const char* command : {"ADD", "SHARE", "EVENTS", "READ", "NAMES"}) Cmd(command)(host);
  }
  host.Destroy();
  EXPECT_TRUE(standin::GetLedger().Empty());
}

TEST(Host, HasNothingToSayOfMedia) {
  struct : Recorder {
    void OnMisuse(const std::string& what) override { said.push_back(what); }
    void OnHint(standin::Hint, const std::string& what) override { said.push_back(what); }
    Lines said;
  } recorder;
  const Directory directory;
  {
    standin::Host host(ThePlugin(), recorder, directory.path);
    host.Initialize(1);
    host.Bind(5001, "", {});
    for (const Message& message : Messages("7")) message.step(host);
    NtfXml("X", "<command name='RESET'><param name='ROOM_ID'>5</param></command>")(host);
    host.Persist();
    host.Unbind(5001, "");
  }
  { const standin::Host never(ThePlugin(), recorder, directory.path); }
  EXPECT_EQ(recorder.said, Lines());
}
