#include "benchmarks/XmlPeers.h"

#include "benchmarks/DriverWithSink.h"

#include <libxml/tree.h>
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

const xmlChar* Bytes(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

void Add(xmlNodePtr node, const Element& element) {
  if (!element.text.empty()) xmlAddChild(node, xmlNewText(Bytes(element.text)));
  for (const auto& child : element.children) {
    Add(xmlNewChild(node, nullptr, Bytes(child->name), nullptr), *child);
  }
}

struct Free {
  void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
  void operator()(xmlBufferPtr buffer) const { xmlBufferFree(buffer); }
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

std::string PrintWithLibxml2(const Element& root) {
  const std::unique_ptr<xmlDoc, Free> document(xmlNewDoc(nullptr));
  xmlNodePtr node = xmlNewNode(nullptr, Bytes(root.name));
  xmlDocSetRootElement(document.get(), node);
  Add(node, root);
  const std::unique_ptr<xmlBuffer, Free> buffer(xmlBufferCreate());
  xmlNodeDump(buffer.get(), document.get(), node, 0, 0);
  return {reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
          static_cast<std::size_t>(xmlBufferLength(buffer.get()))};
}

std::size_t HeapOfPugixml(const Element& root) {
  const std::size_t before = HeapInUse();
  pugi::xml_document document;
  Add(document, root);
  return HeapInUse() - before;
}
