#include "benchmarks/Pugixml.h"

#include "benchmarks/DriverWithSink.h"

#include <pugixml.hpp>

#include <memory>
#include <stdexcept>

namespace {

Element Copy(const pugi::xml_node& node) {
  Element element{node.name(), node.text().get(), {}};
  for (const auto child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    element.children.push_back(std::make_shared<Element>(Copy(child)));
  }
  return element;
}

void Add(pugi::xml_node parent, const Element& element) {
  pugi::xml_node node = parent.append_child(element.name.c_str());
  if (!element.text.empty()) {
    node.append_child(pugi::node_pcdata).set_value(element.text.c_str());
  }
  for (const auto& child : element.children) Add(node, *child);
}

class StringWriter final : public pugi::xml_writer {
 public:
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
  std::string text;
};

}  // namespace

Element Describe(const std::string& xml) {
  pugi::xml_document document;
  if (!document.load_string(xml.c_str(), pugi::parse_default | pugi::parse_ws_pcdata)) {
    throw std::runtime_error("not XML: " + xml);
  }
  return Copy(document.document_element());
}

std::string PrintWithPugixml(const Element& root) {
  pugi::xml_document document;
  Add(document, root);
  StringWriter writer;
  document.print(writer, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
  return std::move(writer.text);
}

std::size_t HeapOfPugixml(const Element& root) {
  const std::size_t before = HeapInUse();
  pugi::xml_document document;
  Add(document, root);
  return HeapInUse() - before;
}
