#include "driver/media.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"

#include <utility>

// The held document is replaced only when the new one is complete, together with the pointer to its
// items.
void media::NewDocument(const std::string& name, std::initializer_list<NamedValue> values) {
  auto node = TqXML::CreateXmlNode();
  TqXML::INode* items = nullptr;
  if (node) {
    node->SetNameValue(name, "");
    AddValues(*node, values);
    items = XmlHelper::AddChild(*node, "items", "");
  }
  m_ListNode = std::move(node);
  m_ListItemsNode = items;
}

void media::OnNtfNewMenu(const IBindMessage& msg) {
  NewDocument("menu_list", {{"title", msg.GetParamText("title")},
                            {"num_items", msg.GetParamValue("num_items")}});
}

void media::OnNtfNewList(const IBindMessage& msg) {
  NewDocument("list", {{"title", msg.GetParamText("title")},
                       {"total_items", msg.GetParamValue("total_items")},
                       {"num_items", msg.GetParamValue("num_items")},
                       {"first_item", msg.GetParamValue("first")},
                       {"clear", msg.GetParamValue("clear")}});
}

void media::AddItem(const IBindMessage& msg) {
  const std::string id = msg.GetParamValue("id");
  const std::string type = msg.GetParamValue("type");
  const std::string text = msg.GetParamValue("text");
  const std::string last = msg.GetParamValue("last");
  if (!m_ListItemsNode) return;

  AddValues(*XmlHelper::AddChild(*m_ListItemsNode, "item", ""),
            {{"id", id}, {"type", type}, {"text", text}});
  if (last == "True") ConSendDataToUI(*m_ListNode);
}

void media::OnNtfAddMenuItem(const IBindMessage& msg) { AddItem(msg); }

void media::OnNtfAddListItem(const IBindMessage& msg) { AddItem(msg); }
