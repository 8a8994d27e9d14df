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
    // As the start tag states them. None when the tag refers to an entity that the document
    // declares.
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;  // of the element and of all that is below it

    // Empty when the element has no such attribute.
    std::string Attribute(const std::string& attribute) const;
  };

  // The root's text as it stands in the document, with one change: where it refers to an entity
  // that the document declares, '&' is written "&amp;", so that the root can be read on its own.
  std::string root;

  std::vector<Element> elements;  // the root, then its children
};

// Reads XML 1.0 in UTF-8, whatever encoding it declares. Returns nothing when the text is not
// well-formed. External entities are not read; references to entities that the document declares
// are not replaced.
std::optional<XmlContent> ReadXml(const std::string& xml);

}  // namespace standin
