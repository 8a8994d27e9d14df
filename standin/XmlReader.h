#pragma once

#include <string>
#include <utility>
#include <vector>

namespace standin {

// The root element of an XML text, and what lies directly below it.
struct XmlContent {
  struct Element {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;  // of the element and of all that is below it

    // Empty when the element has no such attribute.
    std::string Attribute(const std::string& attribute) const;
  };

  // Says why the text is no document. Null when it is one; else the other members are empty.
  const char* fault = nullptr;

  std::string root;               // as it stands in the text; it can be read on its own
  std::vector<Element> elements;  // the root, then its children
};

// Reads XML 1.0 in UTF-8, whatever encoding it declares, and nothing external. A text that is not
// well-formed, or declares entities, is no document.
XmlContent ReadXml(const std::string& xml);

// As ReadXml, for a driver: the observer hears of a fault.
XmlContent ReadXmlForDriver(const std::string& xml);

}  // namespace standin
