#include "host/TqXML.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string xml(reinterpret_cast<const char*>(data), size);
  standin::MakeNotificationFromXml("N", xml)->GetParamText("p");
  const auto read = TqXML::CreateXmlDocument(xml);
  if (!read) return 0;

  const std::string kept = read->GetRootNode().GetXmlString();
  // The other parser knows namespaces and refuses some names with colons, which XML itself allows.
  if (kept.find(':') != std::string::npos) return 0;
  const XmlDocument document = ParseXml(kept);
  EXPECT_NE(document, nullptr) << kept;
  const XmlDocument whole = ParseXml(xml);
  if (!whole || whole->intSubset) return 0;
  EXPECT_EQ(RootText(document), RootText(whole));
  return 0;
}
