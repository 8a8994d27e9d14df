#include "standin/XmlReader.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <climits>
#include <exception>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>

namespace standin {

namespace {

// Gathers what the parser reports. When a handler throws, the parser, which is written in C, is
// stopped, and the exception is thrown again after the parser has returned.
class Gatherer {
 public:
  explicit Gatherer(const std::string& xml) : m_Xml(xml), m_Parser(XML_ParserCreate("UTF-8")) {
    if (!m_Parser) throw std::bad_alloc();
    XML_SetUserData(m_Parser.get(), this);
    XML_SetElementHandler(
        m_Parser.get(),
        [](void* self, const char* name, const char** attributes) {
          Call(self, [&](Gatherer& g) { g.Start(name, attributes); });
        },
        [](void* self, const char*) { Call(self, [](Gatherer& g) { g.End(); }); });
    XML_SetCharacterDataHandler(m_Parser.get(), [](void* self, const char* text, int size) {
      Call(self, [&](Gatherer& g) { g.Text({text, static_cast<std::size_t>(size)}); });
    });
    // With a default handler the parser reports references to internal entities unexpanded.
    XML_SetDefaultHandler(m_Parser.get(), [](void* self, const char* text, int size) {
      Call(self, [&](Gatherer& g) { g.Other({text, static_cast<std::size_t>(size)}); });
    });
  }

  std::optional<XmlContent> Read() {
    if (m_Xml.size() > INT_MAX) return std::nullopt;
    const auto status =
        XML_Parse(m_Parser.get(), m_Xml.data(), static_cast<int>(m_Xml.size()), XML_TRUE);
    if (m_Thrown) std::rethrow_exception(m_Thrown);
    if (XML_GetErrorCode(m_Parser.get()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    if (status != XML_STATUS_OK) return std::nullopt;
    CopyRoot();
    return std::move(m_Content);
  }

 private:
  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  template <class Handler>
  static void Call(void* self, Handler handler) {
    auto& gatherer = *static_cast<Gatherer*>(self);
    if (gatherer.m_Thrown) return;
    try {
      handler(gatherer);
    } catch (...) {
      gatherer.m_Thrown = std::current_exception();
      XML_StopParser(gatherer.m_Parser.get(), XML_FALSE);
    }
  }

  std::size_t Position() const {
    return static_cast<std::size_t>(XML_GetCurrentByteIndex(m_Parser.get()));
  }

  std::size_t EventSize() const {
    return static_cast<std::size_t>(XML_GetCurrentByteCount(m_Parser.get()));
  }

  void Start(const char* name, const char** attributes) {
    const std::string_view tag = std::string_view(m_Xml).substr(Position(), EventSize());
    const bool usesOwnEntities = EscapeOwnEntities(tag);
    if (m_Depth == 0) m_Begin = Position();
    if (m_Depth < 2) {
      m_Content.elements.push_back({name, {}, {}});
      // After the attributes of the tag, the parser lists defaults that the document declares.
      const int stated = usesOwnEntities ? 0 : XML_GetSpecifiedAttributeCount(m_Parser.get());
      for (int i = 0; i < stated; i += 2) {
        m_Content.elements.back().attributes.emplace_back(attributes[i], attributes[i + 1]);
      }
    }
    ++m_Depth;
  }

  void End() {
    if (--m_Depth == 0) m_End = Position() + EventSize();
  }

  void Text(std::string_view text) {
    m_Content.elements.front().text += text;
    if (m_Depth > 1) m_Content.elements.back().text += text;
  }

  void Other(std::string_view text) {
    if (m_Depth == 0 || text[0] != '&') return;
    m_Escaped.push_back(Position());
    Text(text);
  }

  // Returns whether the start tag refers to an entity that the document declares. The parser
  // reports the attributes with such references replaced.
  bool EscapeOwnEntities(std::string_view tag) {
    static constexpr std::array<std::string_view, 6> known = {"&amp;",  "&lt;",   "&gt;",
                                                              "&quot;", "&apos;", "&#"};
    const std::size_t before = m_Escaped.size();
    for (auto at = tag.find('&'); at != std::string_view::npos; at = tag.find('&', at + 1)) {
      const bool isKnown = std::any_of(known.begin(), known.end(), [&](std::string_view entity) {
        return tag.substr(at, entity.size()) == entity;
      });
      if (!isKnown) m_Escaped.push_back(Position() + at);
    }
    return m_Escaped.size() > before;
  }

  void CopyRoot() {
    std::size_t copied = m_Begin;
    for (const std::size_t at : m_Escaped) {
      m_Content.root.append(m_Xml, copied, at - copied).append("&amp;");
      copied = at + 1;
    }
    m_Content.root.append(m_Xml, copied, m_End - copied);
  }

  const std::string& m_Xml;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> m_Parser;
  XmlContent m_Content;
  std::vector<std::size_t> m_Escaped;
  std::size_t m_Begin = 0;
  std::size_t m_End = 0;
  unsigned long m_Depth = 0;
  std::exception_ptr m_Thrown;
};

}  // namespace

std::string XmlContent::Element::Attribute(const std::string& attribute) const {
  for (const auto& [key, value] : attributes) {
    if (key == attribute) return value;
  }
  return {};
}

std::optional<XmlContent> ReadXml(const std::string& xml) { return Gatherer(xml).Read(); }

}  // namespace standin
