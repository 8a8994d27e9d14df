#include "fuzz/Input.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

namespace {

const xmlChar* Chars(const std::string& text) { return reinterpret_cast<const xmlChar*>(text.c_str()); }

// The characters that a parser reads back from a text that the stand-in has written.
std::string ReadBack(const std::string& text) {
  const std::string xml = TqXML::CreateXmlNode("a", text)->GetXmlString();
  const XmlDocument document = ParseXml(xml);
  EXPECT_NE(document, nullptr) << xml;
  const std::unique_ptr<xmlChar, decltype(xmlFree)> content(xmlNodeGetContent(xmlDocGetRootElement(document.get())),
                                                            xmlFree);
  const std::string back = reinterpret_cast<const char*>(content.get());
  EXPECT_TRUE(back == text || back.find("\xEF\xBF\xBD") != std::string::npos) << text;
  const auto message = standin::MakeNotificationFromXml("N", "<r>" + xml + "</r>");
  EXPECT_EQ(message->GetParamText("a"), back) << xml;
  return back;
}

}  // namespace

// Builds the same tree in the stand-in and in libxml2, adding children to any element, and compares.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto root = TqXML::CreateXmlNode("r", "");
  const XmlDocument model(xmlNewDoc(nullptr), &xmlFreeDoc);
  std::vector<std::pair<TqXML::INode*, xmlNode*>> nodes = {{root.get(), xmlNewNode(nullptr, Chars("r"))}};
  xmlDocSetRootElement(model.get(), nodes[0].second);
  for (Input input(data, size); !input.AtEnd();) {
    const auto [node, twin] = nodes[input.Byte() % nodes.size()];
    const bool child = input.Byte() % 2 == 0;
    const std::string text = input.Text();
    const std::string value = child ? text.substr(0, text.find('\0')) : text;
    const std::string back = ReadBack(value);
    xmlNode* added = xmlNewTextChild(twin, nullptr, Chars(child ? "c" : "v"), back.empty() ? nullptr : Chars(back));
    if (child) nodes.emplace_back(XmlHelper::AddChild(*node, "c", value.c_str()), added);
    if (!child) node->AddNamedValue("v", value);
  }
  const std::string xml = root->GetXmlString();
  EXPECT_EQ(RootText(ParseXml(xml)), RootText(model)) << xml;
  const auto again = TqXML::CreateXmlDocument(xml);
  EXPECT_TRUE(again && again->GetRootNode().GetXmlString() == xml) << xml;
  return 0;
}
