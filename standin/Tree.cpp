#include "standin/Tree.h"

#include "host/XmlHelper.h"
#include "standin/OwnOf.h"
#include "standin/Services.h"
#include "standin/XmlReader.h"
#include "standin/XmlText.h"

#include <cassert>
#include <type_traits>

namespace standin {

Element& Element::Of(TqXML::INode& node) { return OwnOf<Element>(node, "an element"); }

const Element& Element::Of(const TqXML::INode& node) {
  return OwnOf<const Element>(node, "an element");
}

unsigned long Element::AddRef() { return m_Tree.AddRef(); }

unsigned long Element::Release() { return m_Tree.Release(); }

void Element::AddNamedValue(const std::string& name, const char* value) { AddChild(name, value); }

void Element::AddNamedValue(const std::string& name, const std::string& value) {
  AddChild(name, value);
}

void Element::AddNamedValue(const std::string& name, bool value) {
  AddChild(name, value ? "True" : "False");
}

void Element::SetNameValue(const std::string& name, const std::string& value) {
  assert(m_Name.empty() && m_Content.empty());
  Set(name, value);
}

static_assert(std::is_trivially_destructible_v<Element>, "it goes with the tree's memory");

void Element::Set(std::string_view name, std::string_view value) {
  std::string valid;
  AppendName(valid, name);
  const std::string_view content = m_Tree.Keep(value);
  m_Name = m_Tree.Keep(valid);
  m_Content = content;
  m_Tree.m_TextSize += 2 * valid.size() + value.size() + 5;
}

Element& Element::AddChild(std::string_view name, std::string_view value) {
  if (m_Name.empty()) m_Tree.OpenRoot();
  Element& child = *m_Tree.m_Memory.new_object<Element>(m_Tree, this);
  child.Set(name, value);
  (m_LastChild ? m_LastChild->m_Next : m_FirstChild) = &child;
  m_LastChild = &child;
  return child;
}

// Each round goes down along the first children, then up as long as there is no next child.
std::string Element::GetXmlString() const {
  std::string xml;
  if (this == &m_Tree.m_Root) xml.reserve(m_Tree.m_TextSize);
  for (const Element* at = this;; at = at->m_Next) {
    for (at->AppendHead(xml); at->m_FirstChild; at->AppendHead(xml)) at = at->m_FirstChild;
    for (at->AppendEnd(xml); at != this && !at->m_Next; at->AppendEnd(xml)) at = at->m_Parent;
    if (at == this) return xml;
  }
}

// For an element without children the head is the whole element.
void Element::AppendHead(std::string& xml) const {
  if (m_Name.empty()) {
    xml += m_Content;
  } else if (!m_FirstChild) {
    AppendElement(xml, m_Name, m_Content);
  } else {
    xml.append("<").append(m_Name).append(">");
    AppendText(xml, m_Content);
  }
}

void Element::AppendEnd(std::string& xml) const {
  if (m_Name.empty()) {
    xml += m_Tree.m_RootEnd;
  } else if (m_FirstChild) {
    xml.append("</").append(m_Name).append(">");
  }
}

Tree::Tree() : Counted(&Ledger::nodes), m_Root(*this, nullptr) {}

Tree::Tree(std::string_view text) : Counted(&Ledger::documents), m_Root(*this, nullptr) {
  const bool empty = text[text.size() - 2] == '/';
  const std::size_t end = empty ? text.size() - 2 : text.rfind("</");
  m_RootEnd = Keep(text.substr(end));
  m_Root.m_Content = Keep(text.substr(0, end));
  m_TextSize = text.size();
}

std::string_view Tree::Keep(std::string_view text) {
  char* kept = static_cast<char*>(m_Memory.allocate_bytes(text.size(), 1));
  return {kept, text.copy(kept, text.size())};
}

void Tree::OpenRoot() {
  assert(!m_RootEnd.empty());
  if (m_RootEnd != "/>") return;
  const std::string head(m_Root.m_Content);
  m_RootEnd = Keep("</" + head.substr(1, head.find_first_of(" \t\r\n") - 1) + '>');
  m_Root.m_Content = Keep(head + '>');
}

}  // namespace standin

tq::auto_com<TqXML::INode> TqXML::CreateXmlNode() {
  if (standin::Services::Fails(standin::Factory::Node)) return {};
  return tq::auto_com<INode>(&(new standin::Tree)->GetRootNode());
}

tq::auto_com<TqXML::INode> TqXML::CreateXmlNode(const std::string& name, const std::string& value) {
  auto node = CreateXmlNode();
  if (node) node->SetNameValue(name, value);
  return node;
}

tq::auto_com<TqXML::IDocument> TqXML::CreateXmlDocument(const std::string& xml) {
  if (standin::Services::Fails(standin::Factory::Document)) return {};
  const auto read = standin::ReadXml(xml);
  if (!read) return {};
  return tq::auto_com<IDocument>(new standin::Tree(read->root));
}

TqXML::INode* XmlHelper::AddChild(TqXML::INode& parent, const char* name, const char* value) {
  return &standin::Element::Of(parent).AddChild(name, value);
}
