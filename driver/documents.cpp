#include "driver/media.h"
#include "host/TqXML.h"

void media::AddValues(TqXML::INode& node, std::initializer_list<NamedValue> values) {
  for (const NamedValue& value : values) node.AddNamedValue(value.name, value.value);
}

void media::SendToUI(const char* document, std::initializer_list<NamedValue> values) {
  if (const auto node = TqXML::CreateXmlNode(document, "")) {
    AddValues(*node, values);
    ConSendDataToUI(*node);
  }
}
