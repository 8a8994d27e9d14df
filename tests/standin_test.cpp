#include "host/Base64Encoder.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

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

  const auto document = TqXML::CreateXmlDocument("<r x='&e;' y='&#38;'/>" + std::string());
  EXPECT_FALSE(document);
  const auto parsed = TqXML::CreateXmlDocument("<!DOCTYPE r [<!ENTITY e ''>]><r x='&e;' />");
  parsed->GetRootNode().AddNamedValue("s", "1");
  XmlHelper::AddChild(parsed->GetRootNode(), "t", "")->AddNamedValue("u", "2");
  EXPECT_EQ(parsed->GetRootNode().GetXmlString(), "<r x='&amp;e;' ><s>1</s><t><u>2</u></t></r>");
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

class Probe : public testing::Test {
 protected:
  struct : Recorder {
    void OnRooms(const std::string& command, const standin::Params& params) override {
      lines.push_back(command);
      for (const auto& param : params) lines.push_back(param.name + '|' + param.type + '|' + param.value);
    }
  } m_Recorder;
  const standin::Plugin m_Plugin{PROBE_PLUGIN};
  standin::Host m_Host{m_Plugin, m_Recorder, "/"};
};

// The name is registered twice; the first handler would throw.
TEST_F(Probe, ReadsABoundCallBackAsTheCommand) {
  Cmd("ROUND \"TRIP\"\t\n<&>", {{"\"'\r\n\t ", " \"\r\n\t<", "I&\""}, {"\xFF\"", "", "INTEGER"}})(m_Host);
  EXPECT_EQ(m_Recorder.lines, (std::vector<std::string>{"ROUND \"TRIP\"\t\n<&>", "\"'\r\n\t |I&\"| \"\r\n\t<",
                                                        "\xEF\xBF\xBD\"|INTEGER|"}));
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

TEST(Host, HasNoVariablesBeforeItInitializes) {
  Recorder recorder;
  standin::Host host(ThePlugin(), recorder, "/");
  Ntf("ONLINE_STATUS_CHANGED", {{"online_status", "True"}})(host);
  EXPECT_EQ(recorder.lines, std::vector<std::string>{"ui <online_status>True</online_status>"});
}
