#include "standin/Tree.h"

#include "host/XmlHelper.h"
#include "standin/OwnOf.h"
#include "standin/Services.h"
#include "standin/XmlReader.h"
#include "standin/XmlText.h"

#include <cassert>
#include <utility>

namespace standin {

namespace {

// Holds most documents of a driver without growing.
constexpr std::size_t s_UsualSize = 255;

}  // namespace

Element& Element::Of(TqXML::INode& node) { return OwnOf<Element>(node, "an element"); }

const Element& Element::Of(const TqXML::INode& node) {
  return OwnOf<const Element>(node, "an element");
}

unsigned long Element::AddRef() { return m_Tree.AddRef(); }

unsigned long Element::Release() { return m_Tree.Release(); }

void Element::AddNamedValue(const std::string& name, const char* value) {
  m_Tree.Append(*this, [&](std::string& xml) { AppendElement(xml, name, value); });
}

void Element::AddNamedValue(const std::string& name, const std::string& value) {
  m_Tree.Append(*this, [&](std::string& xml) { AppendElement(xml, name, value); });
}

void Element::AddNamedValue(const std::string& name, bool value) {
  AddNamedValue(name, value ? "True" : "False");
}

std::string Element::GetXmlString() const { return m_Tree.Text(*this); }

void Element::SetNameValue(const std::string& name, const std::string& value) {
  assert(m_NameLength == 0);
  WriteHead(m_Tree.m_Text, name, value);
}

Element& Element::AddChild(const char* name, const char* value) {
  std::pmr::forward_list<Element> made(&m_Tree.m_Memory);
  Element& child = made.emplace_front(m_Tree, this);
  const bool open = m_Tree.IsOpen(*this);
  const std::size_t offset = m_Tree.Append(*this, [&](std::string& xml) {
    child.WriteHead(xml, name, value);
    child.m_ContentEnd = xml.size();
    if (!open) child.WriteEnd(xml, xml, xml.size() == child.m_HeadEnd);
  });
  child.m_Begin += offset;
  child.m_HeadEnd += offset;
  child.m_ContentEnd += offset;
  if (open) m_Tree.m_Open = &child;
  m_Tree.m_Children.splice_after(m_Tree.m_Children.before_begin(), made);
  return child;
}

void Element::WriteHead(std::string& xml, std::string_view name, std::string_view value) {
  const std::size_t begin = xml.size();
  xml += '<';
  AppendName(xml, name);
  const std::size_t headEnd = xml.size();
  if (!value.empty()) {
    xml += '>';
    AppendText(xml, value);
  }
  m_Begin = begin;
  m_NameLength = headEnd - begin - 1;
  m_HeadEnd = headEnd;
}

void Element::WriteEnd(std::string& xml, const std::string& text, bool empty) const {
  if (empty) {
    xml += "/>";
    return;
  }
  xml += "</";
  xml.append(text, m_Begin + 1, m_NameLength);
  xml += '>';
}

Tree::Tree() : Counted(&Ledger::nodes), m_Root(*this, nullptr), m_Open(&m_Root) {
  m_Text.reserve(s_UsualSize);
}

Tree::Tree(std::string text, std::size_t nameLength, std::size_t headEnd, std::size_t contentEnd)
    : Counted(&Ledger::documents),
      m_Text(std::move(text)),
      m_Root(*this, nullptr),
      m_Open(nullptr) {
  m_Root.m_NameLength = nameLength;
  m_Root.m_HeadEnd = headEnd;
  m_Root.m_ContentEnd = contentEnd;
}

bool Tree::IsOpen(const Element& element) const {
  const Element* open = m_Open;
  while (open && open != &element) open = open->m_Parent;
  return open != nullptr;
}

std::string Tree::Text(const Element& element) const {
  if (element.m_NameLength == 0) return {};
  if (!IsOpen(element)) {
    if (&element == &m_Root) return m_Text;
    std::string xml = m_Text.substr(element.m_Begin, element.m_ContentEnd - element.m_Begin);
    xml.append(m_Text, element.m_ContentEnd,
               m_Text.find('>', element.m_ContentEnd) + 1 - element.m_ContentEnd);
    return xml;
  }
  std::string xml;
  xml.reserve(m_Text.size() - element.m_Begin + EndsSize(element));
  xml.append(m_Text, element.m_Begin);
  AppendEnds(xml, element);
  return xml;
}

std::size_t Tree::EndsSize(const Element& element) const {
  std::size_t size = 0;
  for (const Element* open = m_Open; open != element.m_Parent; open = open->m_Parent) {
    size += open->m_NameLength + 3;
  }
  return size;
}

void Tree::AppendEnds(std::string& xml, const Element& element) const {
  bool empty = m_Text.size() == m_Open->m_HeadEnd;
  for (const Element* open = m_Open; open != element.m_Parent; open = open->m_Parent) {
    open->WriteEnd(xml, m_Text, std::exchange(empty, false));
  }
}

WholeText::WholeText(const Element& element)
    : m_Tree(element.m_Tree), m_Size(m_Tree.m_Text.size()), m_IsRoot(&element == &m_Tree.m_Root) {
  if (!m_IsRoot) {
    m_Copy = element.GetXmlString();
  } else if (m_Tree.m_Open && element.m_NameLength > 0) {
    m_Tree.m_Text.reserve(m_Size + m_Tree.EndsSize(element));
    m_Tree.AppendEnds(m_Tree.m_Text, element);
  }
}

template <class Write>
std::size_t Tree::Append(Element& element, Write write) {
  assert(element.m_NameLength != 0);
  if (!IsOpen(element)) {
    std::string content;
    write(content);
    return InsertIntoClosed(element, content);
  }
  const std::size_t size = m_Text.size();
  Element* const open = m_Open;
  try {
    for (; m_Open != &element; m_Open = m_Open->m_Parent) {
      m_Open->m_ContentEnd = m_Text.size();
      m_Open->WriteEnd(m_Text, m_Text, m_Text.size() == m_Open->m_HeadEnd);
    }
    if (m_Text.size() == element.m_HeadEnd) m_Text += '>';
    write(m_Text);
  } catch (...) {
    m_Text.resize(size);
    m_Open = open;
    throw;
  }
  return 0;
}

std::size_t Tree::InsertIntoClosed(Element& element, const std::string& content) {
  const bool empty = m_Text[element.m_HeadEnd] == '/';
  std::string piece = content;
  if (empty) {
    const std::string name = m_Text.substr(element.m_Begin + 1, element.m_NameLength);
    piece = ">" + content + "</" + name + ">";
  }
  const std::size_t at = element.m_ContentEnd;
  const std::size_t replaced = empty ? 2 : 0;
  m_Text.replace(at, replaced, piece);

  const std::size_t shift = piece.size() - replaced;
  const auto move = [at, shift](Element& moved) {
    if (moved.m_ContentEnd >= at) moved.m_ContentEnd += shift;
    if (moved.m_Begin > at) {
      moved.m_Begin += shift;
      moved.m_HeadEnd += shift;
    }
  };
  move(m_Root);
  for (Element& child : m_Children) move(child);
  element.m_ContentEnd = at + (empty ? 1 : 0) + content.size();
  return at + (empty ? 1 : 0);
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
  auto read = standin::ReadXml(xml);
  if (!read) return {};
  return tq::auto_com<IDocument>(
      new standin::Tree(std::move(read->root), read->nameLength, read->headEnd, read->contentEnd));
}

TqXML::INode* XmlHelper::AddChild(TqXML::INode& parent, const char* name, const char* value) {
  return &standin::Element::Of(parent).AddChild(name, value);
}
