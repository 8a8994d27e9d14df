#include "driver/media.h"
#include "host/TqXML.h"

void media::SendToUI(const std::string& document, std::initializer_list<NamedValue> values) {
  if (const auto node = TqXML::CreateXmlNode(document, "")) {
    AddValues(*node, values);
    ConSendDataToUI(*node);
  }
}
