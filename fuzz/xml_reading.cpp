#include "fuzz/Bench.h"
#include "host/TqXML.h"

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
  Require(document != nullptr, "what was read is well-formed", kept);
  const XmlDocument whole = ParseXml(xml);
  if (!whole || whole->intSubset) return 0;
  Require(RootText(document) == RootText(whole), "an element stays as it is", kept);
  return 0;
}
