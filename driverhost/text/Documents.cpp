#include "driverhost/text/Documents.h"

#include "session/Legible.h"

#include <pugixml.hpp>

#include <algorithm>

namespace driverhost {

namespace {

using pugi::xml_node;

constexpr std::size_t s_LongestName = 60;
constexpr std::size_t s_MostSteps = 20;

// What a forwarded document may hold besides elements and texts makes no difference to a reader.
bool Load(pugi::xml_document& document, std::string_view xml) {
  return static_cast<bool>(document.load_buffer(xml.data(), xml.size(),
                                                pugi::parse_minimal | pugi::parse_escapes |
                                                    pugi::parse_cdata | pugi::parse_ws_pcdata |
                                                    pugi::parse_wconv_attribute,
                                                pugi::encoding_utf8));
}

bool IsText(const xml_node& node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

// The text at the start of a list of siblings; `node` moves past it.
std::string TakeText(xml_node& node) {
  std::string text;
  for (; IsText(node); node = node.next_sibling()) text += node.value();
  return text;
}

std::string Named(const std::string& what, const std::string& text) {
  return text.empty() ? "no " + what : what + ' ' + session::Quoted(text);
}

std::string Named(const xml_node& node) {
  return node ? std::string("element <") + session::Legible(node.name(), s_LongestName) + '>'
              : "its end";
}

// "<list>/<items>/<item>[2]", the innermost steps of a deep one.
std::string Path(xml_node node) {
  std::string path;
  for (std::size_t steps = 0; node.parent(); node = node.parent()) {
    if (++steps > s_MostSteps) return ".../" + path;
    std::size_t position = 1;
    for (xml_node other = node.previous_sibling(node.name()); other;
         other = other.previous_sibling(node.name())) {
      ++position;
    }
    std::string step = '<' + session::Legible(node.name(), s_LongestName) + '>';
    if (position > 1 || node.next_sibling(node.name()))
      step += '[' + std::to_string(position) + ']';
    path.insert(0, path.empty() ? step : step.append(1, '/'));
  }
  return path;
}

std::string Differ(const xml_node& at, const std::string& expected, const std::string& came) {
  const std::string path = Path(at);
  return (path.empty() ? "" : "in " + path + ": ") + "expected " + expected + ", came " + came;
}

std::string DifferInAttributes(const xml_node& expected, const xml_node& came) {
  pugi::xml_attribute one = expected.first_attribute();
  pugi::xml_attribute two = came.first_attribute();
  for (; one || two; one = one.next_attribute(), two = two.next_attribute()) {
    const std::string name = one ? one.name() : two.name();
    if (name != two.name() || std::string_view(one.value()) != two.value()) {
      return Differ(came, Named("attribute " + name, one.value()),
                    Named("attribute " + std::string(two ? two.name() : name), two.value()));
    }
  }
  return {};
}

// The first difference of what lies directly in two elements.
std::string DifferInContent(const xml_node& expected, const xml_node& came) {
  xml_node one = expected.first_child();
  xml_node two = came.first_child();
  for (;;) {
    const std::string oneText = TakeText(one);
    const std::string twoText = TakeText(two);
    if (oneText != twoText) return Differ(came, Named("text", oneText), Named("text", twoText));
    if (std::string_view(one.name()) != two.name()) return Differ(came, Named(one), Named(two));
    if (!one) return {};
    one = one.next_sibling();
    two = two.next_sibling();
  }
}

xml_node NextElement(xml_node node) {
  while (node && node.type() != pugi::node_element) node = node.next_sibling();
  return node;
}

// The element after this one, in document order; descends, and never recurses.
xml_node NextInOrder(xml_node node) {
  if (const xml_node child = NextElement(node.first_child())) return child;
  while (node) {
    if (const xml_node next = NextElement(node.next_sibling())) return next;
    node = node.parent();
  }
  return {};
}

}  // namespace

std::string FirstDifference(std::string_view expected, std::string_view came) {
  if (expected == came) return {};
  pugi::xml_document one;
  pugi::xml_document two;
  if (!Load(one, expected)) return "what is expected is no XML document";
  if (!Load(two, came)) return "what came is no XML document";
  xml_node other = two;
  for (xml_node node = one; node; node = NextInOrder(node), other = NextInOrder(other)) {
    std::string difference = DifferInAttributes(node, other);
    if (difference.empty()) difference = DifferInContent(node, other);
    if (!difference.empty()) return difference;
  }
  return {};
}

std::string Indented(std::string_view xml, std::size_t margin) {
  pugi::xml_document document;
  if (!Load(document, xml)) return session::Legible(xml, xml.size());
  struct Lines : pugi::xml_writer {
    std::string text;
    void write(const void* data, std::size_t size) override {
      text.append(static_cast<const char*>(data), size);
    }
  } lines;
  document.print(lines, "  ", pugi::format_indent | pugi::format_no_declaration,
                 pugi::encoding_utf8);
  std::string shown;
  std::string_view rest = lines.text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    if (!shown.empty()) shown += '\n' + std::string(margin, ' ');
    shown += session::Legible(rest.substr(0, end), end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return shown;
}

}  // namespace driverhost
