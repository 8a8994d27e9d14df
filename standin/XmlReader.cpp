#include "standin/XmlReader.h"

#include "standin/Services.h"

#include <expat.h>

#include <climits>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>

namespace standin {

namespace {

constexpr char s_NotWellFormed[] = "the XML is not well-formed: it is no document and no command";
constexpr char s_OwnEntities[] =
    "the XML has entities of its own: it is no document and no command";

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
    XML_SetEntityDeclHandler(
        m_Parser.get(), [](void* self, auto...) { Call(self, [](Gatherer& g) { g.Entity(); }); });
    XML_SetStartDoctypeDeclHandler(m_Parser.get(), [](void* self, auto...) {
      Call(self, [](Gatherer& g) { g.m_HasDoctype = true; });
    });
  }

  XmlContent Read() {
    if (m_Xml.size() > INT_MAX) return {s_NotWellFormed, {}, {}};
    const auto status =
        XML_Parse(m_Parser.get(), m_Xml.data(), static_cast<int>(m_Xml.size()), XML_TRUE);
    if (m_Thrown) std::rethrow_exception(m_Thrown);
    if (XML_GetErrorCode(m_Parser.get()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    if (m_DeclaresEntities) return {s_OwnEntities, {}, {}};
    if (status != XML_STATUS_OK) return {s_NotWellFormed, {}, {}};
    m_Content.root = m_Xml.substr(m_Begin, m_End - m_Begin);
    return m_HasDoctype ? ReadRootAlone() : std::move(m_Content);
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

  void Start(const char* name, const char** attributes) {
    if (m_Depth == 0) m_Begin = Position();
    if (m_Depth < 2) {
      m_Content.elements.push_back({name, {}, {}});
      for (; *attributes; attributes += 2) {
        m_Content.elements.back().attributes.emplace_back(attributes[0], attributes[1]);
      }
    }
    ++m_Depth;
  }

  void End() {
    const auto tagSize = static_cast<std::size_t>(XML_GetCurrentByteCount(m_Parser.get()));
    if (--m_Depth == 0) m_End = Position() + tagSize;
  }

  void Text(std::string_view text) {
    m_Content.elements.front().text += text;
    if (m_Depth > 1) m_Content.elements.back().text += text;
  }

  void Entity() {
    m_DeclaresEntities = true;
    XML_StopParser(m_Parser.get(), XML_FALSE);
  }

  // What the DOCTYPE declares does not go with the root: defaults of attributes are left out, and
  // what only an external DTD could declare makes the text no document.
  XmlContent ReadRootAlone() const {
    XmlContent alone = ReadXml(m_Content.root);
    if (alone.fault) alone.fault = s_OwnEntities;
    return alone;
  }

  const std::string& m_Xml;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> m_Parser;
  XmlContent m_Content;
  std::size_t m_Begin = 0;
  std::size_t m_End = 0;
  unsigned long m_Depth = 0;
  bool m_HasDoctype = false;
  bool m_DeclaresEntities = false;
  std::exception_ptr m_Thrown;
};

}  // namespace

std::string XmlContent::Element::Attribute(const std::string& attribute) const {
  for (const auto& [key, value] : attributes) {
    if (key == attribute) return value;
  }
  return {};
}

XmlContent ReadXml(const std::string& xml) { return Gatherer(xml).Read(); }

XmlContent ReadXmlForDriver(const std::string& xml) {
  XmlContent read = ReadXml(xml);
  Services* services = Call::Current();
  if (read.fault && services) services->Tell(Hint::NoDocument, read.fault);
  return read;
}

}  // namespace standin
