#include "driverhost/report/Hints.h"

#include "session/Legible.h"
#include "session/NearestWord.h"
#include "session/WriteLine.h"

#include <algorithm>
#include <variant>

namespace driverhost {

namespace {

using session::Quoted;

// A player could go on sending new names for ever.
constexpr std::size_t s_MostNames = 1000;
constexpr std::size_t s_LongestName = 60;    // columns
constexpr std::size_t s_LongestPath = 200;   // columns
constexpr std::size_t s_LongestText = 2000;  // columns

bool Holds(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + session::Legible(name, s_LongestName);
  }
  return list.empty() ? "nothing" : list;
}

}  // namespace

void Hints::OnRegistered(const std::vector<std::string>& registered) {
  m_Registered.clear();
  for (const std::string& line : registered) {
    const std::size_t blank = line.find(' ');
    if (blank != std::string::npos)
      m_Registered[line.substr(0, blank)].push_back(line.substr(blank + 1));
  }
}

// The host knows of a binding before the driver hears of it.
void Hints::OnStep(const Step& step) {
  m_Explained = false;
  if (const auto* bind = std::get_if<session::Bind>(&step.line.action)) m_Bound.insert(bind->id);
  if (const auto* unbind = std::get_if<session::Unbind>(&step.line.action))
    m_Bound.erase(unbind->id);
}

void Hints::OnRecord(const Step& step, const session::Record& record) {
  if (record.Kind() == session::To::Log) m_Explained = true;
  if (record.Kind() == session::To::File) {
    const bool picture = record.Number("width").has_value();
    if (picture) m_Explained = true;
    const std::string path = record.Text("path").value_or("");
    if (!picture) {
      Tell(step, "file " + path,
           session::Legible(path, s_LongestPath) + " is no JPEG after " +
               session::TitleOf(step.line.action));
    }
  }
  if (record.Kind() == session::To::Device) LookAtCall(step, record.Number("binding").value_or(0));
}

void Hints::LookAtCall(const Step& step, unsigned long binding) {
  const bool bound = m_Bound.contains(binding);
  if (bound && (!m_Player || m_Player->Hold(binding))) return;
  const std::string call = "a call goes to binding " + std::to_string(binding);
  const char* lost = bound ? ", which the player has not bound" : ", where no device is bound";
  Tell(step, call + lost, call + lost);
}

void Hints::OnHint(const Step& step, const std::string& text) {
  Tell(step, text, session::Legible(text, s_LongestText));
}

void Hints::OnStepEnd(const Step& step, const Reads& reads) {
  if (const auto* notify = std::get_if<session::Notify>(&step.line.action)) {
    LookAtName(step, "notification", notify->name);
    if (!notify->xml) LookAtParameters(step, reads, notify->name, notify->params);
  } else if (const auto* command = std::get_if<session::Command>(&step.line.action)) {
    LookAtName(step, "command", command->name);
  } else if (const auto* request = std::get_if<session::Request>(&step.line.action)) {
    LookAtName(step, "request", request->name);
  } else if (const auto* bind = std::get_if<session::Bind>(&step.line.action)) {
    LookAtBinding(step, bind->id);
  }
}

void Hints::LookAtName(const Step& step, const char* kind, const std::string& name) {
  if (m_SeenNames.size() == s_MostNames || !m_SeenNames.emplace(kind, name).second) return;
  const std::vector<std::string>& known = m_Registered[kind];
  if (Holds(known, name)) return;
  const std::string meant = session::DidYouMean(name, known);
  const std::string text = std::string("no handler for the ") + kind + ' ' + Quoted(name) + meant;
  if (!meant.empty()) Tell(step, text, text);
}

void Hints::LookAtBinding(const Step& step, unsigned long id) {
  const std::vector<std::string>& known = m_Registered["binding"];
  const std::string binding = std::to_string(id);
  if (Holds(known, binding)) return;
  Tell(step, "binding " + binding,
       "the driver knows no binding " + binding + ", but " + Listed(known));
}

// A handler that reads nothing takes the message as a whole.
void Hints::LookAtParameters(const Step& step, const Reads& reads, const std::string& name,
                             const session::Params& params) {
  std::vector<std::string> read;
  for (const Read& parameter : reads) read.push_back(parameter.name);
  if (read.empty()) return;
  for (const session::Param& param : params) {
    if (Holds(read, param.name)) continue;
    Tell(step, name + " unread " + param.name,
         session::Legible(name, s_LongestName) + " does not read " + Quoted(param.name) +
             session::DidYouMean(param.name, read) + "; it reads " + Listed(read));
  }
  if (m_Explained) return;
  for (const auto& [parameter, has] : reads) {
    if (has) continue;
    std::string key = name;
    Tell(step, key.append(" lacks ").append(parameter),
         session::Legible(name, s_LongestName) + " reads " + Quoted(parameter) +
             ", which the message lacks",
         Weight::Light);
  }
}

void Hints::Tell(const Step& step, const std::string& key, const std::string& text, Weight weight) {
  if (weight == Weight::Serious) m_Serious = true;
  if (m_ToldKeys.size() == s_MostNames || !m_ToldKeys.insert(key).second) return;
  const std::string where = step.source.empty() ? "step " + std::to_string(step.number)
                                                : step.source + ':' + std::to_string(step.place);
  m_Console.Tell(where + ": hint: " + text);
}

}  // namespace driverhost
