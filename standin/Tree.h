#pragma once

#include "host/INode.h"
#include "host/TqXML.h"
#include "standin/Counted.h"

#include <cstddef>
#include <forward_list>
#include <memory_resource>
#include <string>
#include <string_view>

namespace standin {

class Tree;

// An element of a tree; it lives as long as the tree, whose references its own are.
class Element final : public TqXML::INode {
 public:
  Element(Tree& tree, Element* parent) : m_Tree(tree), m_Parent(parent) {}

  static Element& Of(TqXML::INode& node);              // as in OwnOf.h
  static const Element& Of(const TqXML::INode& node);  // as in OwnOf.h

  unsigned long AddRef() override;
  void AddNamedValue(const std::string& name, const char* value) override;
  void AddNamedValue(const std::string& name, const std::string& value) override;
  void AddNamedValue(const std::string& name, bool value) override;
  std::string GetXmlString() const override;
  void SetNameValue(const std::string& name, const std::string& value) override;
  unsigned long Release() override;

  Element& AddChild(const char* name, const char* value);

 private:
  friend class Tree;
  friend class WholeText;

  // Begins the element at the end of `xml`.
  void WriteHead(std::string& xml, std::string_view name, std::string_view value);

  // `text` holds the element from its head on. An empty element's end is its head's.
  void WriteEnd(std::string& xml, const std::string& text, bool empty) const;

  Tree& m_Tree;
  Element* const m_Parent;

  // Offsets in the tree's text: of the start tag, of its '>' or "/>", and, of a closed element, of
  // the end tag.
  std::size_t m_Begin = 0;
  std::size_t m_NameLength = 0;
  std::size_t m_HeadEnd = 0;
  std::size_t m_ContentEnd = 0;
};

// An element with all that is below it, kept as the XML text that it makes. Values and children are
// written as they are added; the end tags of the elements that the last addition stands in are
// missing until something is added behind them. Adding elsewhere moves the text behind it.
class Tree final : public Counted<Tree, TqXML::IDocument> {
 public:
  // A nameless element.
  Tree();

  // The text of an element, with the offsets of its root.
  Tree(std::string text, std::size_t nameLength, std::size_t headEnd, std::size_t contentEnd);

  TqXML::INode& GetRootNode() override { return m_Root; }

 private:
  friend class Element;
  friend class WholeText;

  bool IsOpen(const Element& element) const;

  // The element with its content and the end tags that are still missing.
  std::string Text(const Element& element) const;

  // The end tags that are still missing in an open element.
  std::size_t EndsSize(const Element& element) const;
  void AppendEnds(std::string& xml, const Element& element) const;

  // Adds what `write` appends to its argument as the last content of the element. Returns where in
  // the tree's text that argument begins. A failure leaves the tree as it was.
  template <class Write>
  std::size_t Append(Element& element, Write write);
  std::size_t InsertIntoClosed(Element& element, const std::string& content);

  // Bytes; each further block of children is larger.
  static constexpr std::size_t s_FirstBlock = 512;

  std::string m_Text;
  Element m_Root;
  std::pmr::monotonic_buffer_resource m_Memory{s_FirstBlock};
  std::pmr::forward_list<Element> m_Children{&m_Memory};

  // The innermost element without an end tag; its ancestors have none either.
  Element* m_Open;
};

// The text of an element, without a copy where it is a tree's root. The tree does not change as
// long as the object lives.
class WholeText {
 public:
  explicit WholeText(const Element& element);
  ~WholeText() { m_Tree.m_Text.resize(m_Size); }
  WholeText(const WholeText&) = delete;
  WholeText& operator=(const WholeText&) = delete;

  const std::string& Get() const { return m_IsRoot ? m_Tree.m_Text : m_Copy; }

 private:
  Tree& m_Tree;
  const std::size_t m_Size;
  const bool m_IsRoot;
  std::string m_Copy;
};

}  // namespace standin
