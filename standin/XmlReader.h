#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace standin {

// The root element of an XML text, and what lies directly below it.
struct XmlContent {
  struct Element {
    std::string name;
    // Those of the start tag itself; none if own entities are in it.
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;  // of the element and of all that is below it

    // Empty when the element has no such attribute.
    std::string Attribute(const std::string& attribute) const;
  };

  // The root as it stands in the text, but readable without the document's declarations: where it
  // refers to an entity of the document's own, the '&' is escaped.
  std::string root;

  std::vector<Element> elements;  // the root, then its children
};

// Reads XML 1.0 in UTF-8, whatever encoding it declares. Nothing when it is not well-formed. Reads
// no external entity; references to the document's own entities stay as they are.
std::optional<XmlContent> ReadXml(const std::string& xml);

}  // namespace standin
