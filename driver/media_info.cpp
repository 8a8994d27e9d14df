#include "driver/media.h"
#include "host/ToString.h"
#include "host/TqXML.h"

#include <utility>

namespace {

bool IsStripped(char c) { return c == '"' || c == ' '; }

// A text of nothing but quotes and blanks stays as it is.
std::string TrimQuotesAndSpaces(std::string text) {
  static constexpr char stripped[] = "\" ";
  const std::size_t first = text.find_first_not_of(stripped);
  if (first == std::string::npos) return text;
  text.erase(text.find_last_not_of(stripped) + 1);
  text.erase(0, first);
  return text;
}

}  // namespace

void media::MediaInfo::Clear() { *this = MediaInfo(); }

void media::MediaInfo::AddToINode(TqXML::INode* node, bool includeImage) const {
  if (!m_Valid) return;
  const auto add = [node](const std::string& name, const std::string& text) {
    if (text.empty()) return;
    if (IsStripped(text.front()) || IsStripped(text.back())) {
      node->AddNamedValue(name, TrimQuotesAndSpaces(text));
    } else {
      node->AddNamedValue(name, text);
    }
  };
  add("label_1", m_Line1);
  add("label_2", m_Line2);
  add("label_3", m_Line3);
  if (includeImage) add("img", m_Image);
}

void media::OnNtfUpdateMediaInfo(const IBindMessage& msg) {
  static const std::string name = "UPDATE_MEDIA_INFO";  // too long to build without allocating
  const auto command = CreateCommandMessageFromName(name);
  const auto node = TqXML::CreateXmlNode("mediainfo", "");
  if (!node) return;
  node->AddNamedValue("mediatype", "MEDIASONG");
  node->AddNamedValue("deviceid", tq::ToString(GetDeviceId()).c_str());

  MediaInfo info;
  info.m_Line1 = msg.GetParamText("media_info_1");
  info.m_Line2 = msg.GetParamText("media_info_2");
  info.m_Line3 = msg.GetParamText("media_info_3");
  info.m_Valid = true;
  m_MediaInfo = std::move(info);

  m_MediaInfo.AddToINode(node.get(), false);
  if (!command) return;
  command->AddParamText("MEDIA_INFO", "STRING", node->GetXmlString());
  SendCommandToRooms(*command);
}

void media::OnNtfMediaInfoChanged(const IBindMessage& msg) {
  SendToUI("MEDIA_INFO_CHANGED", {{"media_info_1", msg.GetParamText("media_info_1")},
                                  {"media_info_2", msg.GetParamText("media_info_2")},
                                  {"media_info_3", msg.GetParamText("media_info_3")}});
}
