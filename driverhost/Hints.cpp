#include "driverhost/Hints.h"

#include "driverhost/Legible.h"
#include "driverhost/NearestWord.h"
#include "standin/Messages.h"

#include <algorithm>
#include <cstdio>
#include <variant>

namespace driverhost {

namespace {

// A player could go on sending new names for ever.
constexpr std::size_t s_MostNames = 1000;

// The names of one kind out of what a driver has registered as "KIND NAME".
std::vector<std::string> NamesOf(const std::vector<std::string>& registered,
                                 const std::string& kind) {
  std::vector<std::string> names;
  for (const std::string& line : registered) {
    if (line.starts_with(kind + ' ')) names.push_back(line.substr(kind.size() + 1));
  }
  return names;
}

bool Holds(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  return list.empty() ? "nothing" : list;
}

}  // namespace

void Hints::OnStep(unsigned long, const Step& step) {
  m_Step = &step;
  m_Read.clear();
  m_Lacked.clear();
  m_Explained = false;
}

void Hints::OnRead(const std::string& parameter, bool has) {
  m_Read.push_back(parameter);
  if (!has) m_Lacked.push_back(parameter);
}

void Hints::OnRecord(const Record& record) {
  if (record.to == Record::To::Log) m_Explained = true;
  if (record.to == Record::To::File) {
    const bool picture = std::holds_alternative<unsigned long>(record["width"]);
    if (picture) m_Explained = true;
    const std::string path(record.Text("path"));
    if (!picture) Tell("file " + path, path + " is no JPEG after " + m_Step->title);
  }
  if (record.to == Record::To::Device && !m_PlayerComes) {
    const unsigned long binding = record.Number("binding");
    if (m_Life.Host()->Bindings().contains(binding)) return;
    Tell("device " + std::to_string(binding),
         "a call goes to binding " + std::to_string(binding) + ", where no device is bound");
  }
}

void Hints::OnStepEnd() {
  if (!m_Step->hint.empty()) Tell(m_Step->title + m_Step->hint, m_Step->hint);
  if (const auto* notify = std::get_if<Notify>(&m_Step->call)) {
    LookAtName("notification", notify->name);
    LookAtParameters(*notify);
  } else if (const auto* command = std::get_if<Execute>(&m_Step->call)) {
    LookAtName("command", command->name);
  } else if (const auto* request = std::get_if<Request>(&m_Step->call)) {
    LookAtName("request", request->name);
  } else if (const auto* bind = std::get_if<Bind>(&m_Step->call)) {
    LookAtBinding(bind->id);
  }
}

void Hints::LookAtName(const char* kind, const std::string& name) {
  if (m_Seen.size() == s_MostNames || !m_Seen.emplace(kind, name).second) return;
  const auto known = NamesOf(m_Life.Host()->Registered(), kind);
  if (Holds(known, name)) return;
  const std::string meant = DidYouMean(name, known);
  const std::string text = std::string("no handler for the ") + kind + ' ' + Quoted(name) + meant;
  if (!meant.empty()) Tell(text, text);
}

void Hints::LookAtBinding(unsigned long id) {
  const auto known = NamesOf(m_Life.Host()->Registered(), "binding");
  const std::string binding = std::to_string(id);
  if (!Holds(known, binding)) {
    Tell("binding " + binding, "the driver knows no binding " + binding + ", but " + Listed(known));
  }
}

// A handler that reads nothing takes the message as a whole.
void Hints::LookAtParameters(const Notify& notify) {
  if (m_Read.empty()) return;
  for (const standin::Param& param : standin::ParametersOf(*notify.message)) {
    if (Holds(m_Read, param.name)) continue;
    Tell(notify.name + " unread " + param.name,
         notify.name + " does not read " + Quoted(param.name) + DidYouMean(param.name, m_Read) +
             "; it reads " + Listed(m_Read));
  }
  if (m_Explained) return;
  for (const std::string& name : m_Lacked) {
    Tell(notify.name + " lacks " + name,
         notify.name + " reads " + Quoted(name) + ", which the message lacks", Weight::Light);
  }
}

void Hints::Tell(const std::string& key, const std::string& text, Weight weight) {
  if (weight == Weight::Serious) m_Serious = true;
  if (m_Told.size() == s_MostNames || !m_Told.insert(key).second) return;
  m_Output.Flush();
  std::fprintf(stderr, "%s:%lu: hint: %s\n", std::string(m_Step->source).c_str(), m_Step->line,
               text.c_str());
}

}  // namespace driverhost
