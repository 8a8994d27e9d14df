#include "standin/Tree.h"

#include "host/XmlHelper.h"
#include "standin/CheckedCast.h"
#include "standin/Operation.h"
#include "standin/Services.h"
#include "standin/XmlText.h"

#include <type_traits>

namespace standin {

void Element::CheckAlive(const char* operation) const { m_Tree.CheckAlive(operation); }

unsigned long Element::AddRef() {
  const unsigned long references = m_Tree.AddRef();
  m_References.Add(1);
  return references;
}

unsigned long Element::Release() {
  if (m_References.Get() > 0) {
    m_References.Subtract(1);
  } else if (m_Tree.References() > 0) {
    HostObject::ReportBorrowedRelease(HostObject::Kind::Node);
    return m_Tree.References();
  }
  return m_Tree.Release();
}

void Element::AddNamedValue(const std::string& name, const char* value) {
  m_Tree.CheckUse("INode::AddNamedValue");
  AddChild(name, value);
}

void Element::AddNamedValue(const std::string& name, const std::string& value) {
  m_Tree.CheckUse("INode::AddNamedValue");
  AddChild(name, value);
}

void Element::AddNamedValue(const std::string& name, bool value) {
  m_Tree.CheckUse("INode::AddNamedValue");
  AddChild(name, value ? "True" : "False");
}

void Element::SetNameValue(const std::string& name, const std::string& value) {
  m_Tree.CheckUse("INode::SetNameValue");
  SetNameAndContent(name, value);
}

static_assert(std::is_trivially_destructible_v<Element>, "it goes with the tree's memory");

void Element::SetNameAndContent(std::string_view name, std::string_view value) {
  const std::string valid = NameForDriver(name);
  const std::string_view content = m_Tree.Copy(value);
  m_Name = m_Tree.Copy(valid);
  m_Content = content;
  m_Tree.m_TextSize += 2 * valid.size() + value.size() + 5;
}

Element& Element::AddChild(std::string_view name, std::string_view value) {
  if (m_Name.empty() && !WasRead()) SetNameAndContent(m_Name, m_Content);
  Element& child = *m_Tree.m_Memory.new_object<Element>(m_Tree, this, 0);
  child.SetNameAndContent(name, value);
  (m_LastChild ? m_LastChild->m_Next : m_FirstChild) = &child;
  m_LastChild = &child;
  return child;
}

// Each round goes down along the first children, then up as long as there is no next child.
std::string Element::GetXmlString() const {
  m_Tree.CheckUse("INode::GetXmlString");
  if (m_Name.empty() && !WasRead()) return '<' + NameForDriver(m_Name) + "/>";
  std::string xml;
  if (this == &m_Tree.m_Root) xml.reserve(m_Tree.m_TextSize);
  for (const Element* at = this;; at = at->m_Next) {
    for (at->AppendHead(xml); at->m_FirstChild; at->AppendHead(xml)) at = at->m_FirstChild;
    for (at->AppendEnd(xml); at != this && !at->m_Next; at->AppendEnd(xml)) at = at->m_Parent;
    if (at == this) return xml;
  }
}

bool Element::WasRead() const { return !m_Tree.m_RootEnd.empty(); }

bool Element::HasLostItsEnd() const {
  return WasRead() && m_FirstChild && m_Tree.m_RootEnd == "/>";
}

// For an element without children the head is the whole element.
void Element::AppendHead(std::string& xml) const {
  if (m_Name.empty()) {
    xml += m_Content;
    if (HasLostItsEnd()) xml += '>';
  } else if (!m_FirstChild) {
    AppendElement(xml, m_Name, m_Content);
  } else {
    xml.append("<").append(m_Name).append(">");
    AppendText(xml, m_Content);
  }
}

void Element::AppendEnd(std::string& xml) const {
  if (m_Name.empty() && !HasLostItsEnd()) {
    xml += m_Tree.m_RootEnd;
  } else if (m_FirstChild) {
    xml.append("</").append(m_Name.empty() ? m_Tree.m_RootName : m_Name).append(">");
  }
}

Tree::Tree() : Counted(Kind::Node), m_Root(*this, nullptr, 1) {}

Tree::Tree(const XmlContent& content) : Counted(Kind::Document), m_Root(*this, nullptr, 0) {
  const std::string_view text = content.root;
  const std::size_t end = text.ends_with("/>") ? text.size() - 2 : text.rfind("</");
  m_Root.m_Content = Copy(text.substr(0, end));
  m_RootEnd = Copy(text.substr(end));
  m_RootName = Copy(content.elements.front().name);
  m_TextSize = text.size();
}

TqXML::INode& Tree::GetRootNode() {
  CheckUse("IDocument::GetRootNode");
  return m_Root;
}

std::string_view Tree::Copy(std::string_view text) {
  char* kept = static_cast<char*>(m_Memory.allocate_bytes(text.size(), 1));
  return {kept, text.copy(kept, text.size())};
}

}  // namespace standin

tq::auto_com<TqXML::INode> TqXML::CreateXmlNode() {
  standin::CheckCaller("TqXML::CreateXmlNode");
  if (standin::Services::Fails(standin::Factory::Node)) return {};
  return tq::auto_com<INode>(&(new standin::Tree)->Root());
}

tq::auto_com<TqXML::INode> TqXML::CreateXmlNode(const std::string& name, const std::string& value) {
  auto node = CreateXmlNode();
  if (node) node->SetNameValue(name, value);
  return node;
}

tq::auto_com<TqXML::IDocument> TqXML::CreateXmlDocument(const std::string& xml) {
  standin::CheckCaller("TqXML::CreateXmlDocument");
  if (standin::Services::Fails(standin::Factory::Document)) return {};
  const auto read = standin::ReadXmlForDriver(xml);
  if (read.fault) return {};
  return tq::auto_com<IDocument>(new standin::Tree(read));
}

TqXML::INode* XmlHelper::AddChild(TqXML::INode& parent, const char* name, const char* value) {
  standin::CheckCaller("XmlHelper::AddChild");
  return &standin::CheckedCast<standin::Element>(parent, "XmlHelper::AddChild")
              .AddChild(name, value);
}
