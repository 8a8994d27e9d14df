#include "driverhost/text/StepTitle.h"

#include "session/Legible.h"
#include "session/WriteLine.h"

#include <cstddef>
#include <string_view>
#include <variant>

namespace driverhost {

namespace {

constexpr std::size_t s_LongestValue = 32;
constexpr std::size_t s_LongestTitle = 400;

// What stands behind the kind and the name.
class Details {
 public:
  Details(const session::Line& line, bool whole) : m_Line(line), m_Whole(whole) {}

  std::string Text() {
    std::visit(*this, m_Line.action);
    return m_Text;
  }

  void operator()(const session::Notify& notify) {
    if (notify.xml) return Add(" ", "xml", *notify.xml);
    AddAll(notify.params);
  }
  void operator()(const session::Command& command) { AddAll(command.params); }
  void operator()(const session::Request& request) { AddAll(request.params); }
  void operator()(const session::Bind& bind) {
    AddClass(bind.className);
    AddAll(bind.capabilities);
  }
  void operator()(const session::Unbind& unbind) { AddClass(unbind.className); }
  void operator()(const session::Rooms& rooms) {
    for (const auto& [room, output] : rooms.outputs) {
      Add(m_Text.empty() ? " " : "", std::to_string(room), std::to_string(output));
    }
  }
  void operator()(const session::Start&) {}
  void operator()(const session::Persist&) {}
  void operator()(const session::Restart&) {}
  void operator()(const session::Destroy&) {}

 private:
  std::string Shown(const std::string& text) const {
    return session::Legible(text, m_Whole ? text.size() * 4 : s_LongestValue);
  }

  void Add(std::string_view before, const std::string& name, const std::string& value) {
    const auto file = m_Line.files.find(name);
    m_Text.append(before).append(1, ' ').append(Shown(name)).append(1, '=');
    m_Text += file == m_Line.files.end() ? Shown(value) : "base64_of_file:" + Shown(file->second);
  }

  void AddClass(const std::string& name) {
    if (!name.empty()) Add(" ", "class", name);
  }

  void AddAll(const session::Params& params) {
    std::string_view before = " ";
    for (const session::Param& param : params) {
      if (!m_Whole && m_Text.size() > s_LongestTitle) {
        m_Text += " ...";
        return;
      }
      Add(before, param.name, param.value);
      before = "";
    }
  }

  const session::Line& m_Line;
  const bool m_Whole;
  std::string m_Text;
};

}  // namespace

std::string StepTitle(const session::Line& line, bool whole) {
  return session::TitleOf(line.action) + Details(line, whole).Text();
}

}  // namespace driverhost
