#include "driver/media.h"

#include <cstddef>

namespace {

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
    if (!text.empty()) node->AddNamedValue(name, TrimQuotesAndSpaces(text));
  };
  add("label_1", m_Line1);
  add("label_2", m_Line2);
  add("label_3", m_Line3);
  if (includeImage) add("img", m_Image);
}
