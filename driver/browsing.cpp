#include "driver/media.h"
#include "host/TqXML.h"
#include "host/XmlHelper.h"

// From the moment the old document goes there are no items until the new one's element is there.
void media::NewDocument(const std::string& name, std::initializer_list<NamedValue> values) {
  m_ListNode = TqXML::CreateXmlNode();
  m_ListItemsNode = nullptr;
  if (!m_ListNode) return;
  m_ListNode->SetNameValue(name, "");
  AddValues(*m_ListNode, values);
  m_ListItemsNode = XmlHelper::AddChild(*m_ListNode, "items", "");
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
