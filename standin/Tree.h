#pragma once

#include "host/INode.h"
#include "host/TqXML.h"
#include "standin/Counted.h"

#include <cstddef>
#include <memory_resource>
#include <string>
#include <string_view>

namespace standin {

class Tree;

// An element of a tree. It lives as long as the tree: its reference count is the tree's.
class Element final : public TqXML::INode {
 public:
  // An element without a name. `parent` is null for the root.
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

  Element& AddChild(std::string_view name, std::string_view value);

 private:
  friend class Tree;

  void Set(std::string_view name, std::string_view value);

  // Write what stands before the children, and what stands after them.
  void AppendHead(std::string& xml) const;
  void AppendEnd(std::string& xml) const;

  Tree& m_Tree;
  Element* const m_Parent;
  Element* m_FirstChild = nullptr;
  Element* m_LastChild = nullptr;
  Element* m_Next = nullptr;  // the next child of the parent

  // The content is the text before the children. The bytes of both belong to the tree.
  std::string_view m_Name;
  std::string_view m_Content;
};

// An element with all that is below it. Neither printing nor destroying it recurses.
class Tree final : public Counted<Tree, TqXML::IDocument> {
 public:
  // An element without a name.
  Tree();

  // An element that was read from XML text. It is not taken apart, so that it comes out as it came
  // in: the root has no name, and its content is the text up to the end tag.
  explicit Tree(std::string_view text);

  TqXML::INode& GetRootNode() override { return m_Root; }

 private:
  friend class Element;

  // Turns a root that was read as "<name/>" into "<name></name>", so that children fit in.
  void OpenRoot();

  // A copy that lives as long as the tree.
  std::string_view Keep(std::string_view text);

  std::pmr::monotonic_buffer_resource m_Blocks;
  std::pmr::polymorphic_allocator<> m_Memory{&m_Blocks};
  Element m_Root;
  std::string_view m_RootEnd;  // of a root that was read: its end tag, or "/>"

  // How many bytes the root's text takes if no character in it needs an escape.
  std::size_t m_TextSize = 0;
};

}  // namespace standin
