#pragma once

#include "host/INode.h"
#include "host/TqXML.h"
#include "standin/Counted.h"
#include "standin/XmlReader.h"

#include <cstddef>
#include <memory_resource>
#include <string>
#include <string_view>

namespace standin {

class Tree;

// An element of a tree. It lives as long as the tree: a reference to it is one to the tree.
class Element final : public TqXML::INode {
 public:
  // An element without a name. `parent` is null for the root. Of the tree's references,
  // `references` are the element's own.
  Element(Tree& tree, Element* parent, std::size_t references)
      : m_Tree(tree), m_Parent(parent), m_References(references) {}

  void CheckAlive(const char* operation) const;

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

  void SetNameAndContent(std::string_view name, std::string_view value);

  // Of an element without a name: whether it is a root that was read, and whether that was written
  // as "<name/>" and has got children since.
  bool WasRead() const;
  bool HasLostItsEnd() const;

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

  SharedCount m_References;
};

// An element with all that is below it. Neither printing nor destroying it recurses.
class Tree final : public Counted<TqXML::IDocument> {
 public:
  // An element without a name.
  Tree();

  // An element that was read from XML text, which has no fault. It is not taken apart, so that it
  // comes out as it came in: the root has no name, and its content is the text up to the end tag.
  explicit Tree(const XmlContent& content);

  TqXML::INode& GetRootNode() override;
  Element& Root() { return m_Root; }

 private:
  friend class Element;

  // A copy that lives as long as the tree.
  std::string_view Copy(std::string_view text);

  std::pmr::monotonic_buffer_resource m_Blocks;
  std::pmr::polymorphic_allocator<> m_Memory{&m_Blocks};
  Element m_Root;

  // Of a root that was read: its end tag, or "/>", and its name.
  std::string_view m_RootEnd;
  std::string_view m_RootName;

  // How many bytes the root's text takes if no character in it needs an escape.
  std::size_t m_TextSize = 0;
};

}  // namespace standin
