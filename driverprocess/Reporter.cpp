#include "driverprocess/Reporter.h"

#include "driverprocess/JpegSize.h"
#include "session/Record.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace driverprocess {

namespace {

using session::To;
using session::Value;

// A size stands within the first part of a picture.
constexpr std::size_t s_LongestHead = std::size_t{1} << 20U;
constexpr std::size_t s_MostNames = 10000;
constexpr std::size_t s_LongestValue = 60;

Value TextOrNull(const std::string* text) {
  if (text) return *text;
  return nullptr;
}

session::Params ToSession(const standin::Params& params) {
  session::Params own;
  own.reserve(params.size());
  for (const auto& [name, value, type] : params) own.push_back({name, value, type});
  return own;
}

// A record that the memory does not suffice for is no fault of the driver, through which an
// exception would go.
void Send(Connection& connection, To kind, const std::vector<session::Field>& fields) noexcept {
  try {
    connection.Write(session::WriteRecord(kind, fields));
  } catch (const std::exception&) {
    connection.Fail("out of memory");
  }
}

std::string Head(const std::string& path, std::uintmax_t size) {
  std::ifstream file(path, std::ios::binary);
  std::string head(static_cast<std::size_t>(std::min<std::uintmax_t>(size, s_LongestHead)), '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(file.gcount()));
  return head;
}

}  // namespace

void Reporter::BeginMessage(standin::Read::Message kind, const std::string& name) {
  m_Message = {kind, name};
  m_Reads.clear();
  m_Whole = false;
}

void Reporter::EndMessage() {
  if (m_Whole) m_Reads.clear();
  const auto known = m_Known.find(m_Message);
  if (known == m_Known.end() ? m_Reads.empty() : known->second == m_Reads) return;
  if (m_Known.size() < s_MostNames || known != m_Known.end()) m_Known[m_Message] = m_Reads;
  Write({{"reads", m_Reads}});
}

void Reporter::Write(const nlohmann::ordered_json& report) {
  m_Connection.Write(report.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

// A file that is gone again has no size.
void Reporter::OnFile(const std::string& imageRoot, const std::string& path) {
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(imageRoot + path, error);
  if (error) return Send(m_Connection, To::File, {{"path", path}});
  std::vector<session::Field> fields = {{"path", path},
                                        {"bytes", static_cast<unsigned long>(bytes)}};
  if (const auto size = ReadJpegSize(Head(imageRoot + path, bytes))) {
    fields.push_back({"width", static_cast<unsigned long>(size->width)});
    fields.push_back({"height", static_cast<unsigned long>(size->height)});
  }
  Send(m_Connection, To::File, fields);
}

void Reporter::OnVariable(Change change, unsigned long id, const std::string& name,
                          const std::string& value) {
  const char* action = change == Change::Added     ? "added"
                       : change == Change::Changed ? "changed"
                                                   : "removed";
  Send(m_Connection, To::Variable,
       {{"action", action}, {"id", id}, {"name", name}, {"value", value}});
}

void Reporter::OnEvent(unsigned long id, const std::string& label) {
  if (!label.empty() && m_Labelled.size() < s_MostNames && m_Labelled.insert(id).second) {
    Write({{"label", label}, {"event", id}});
  }
  Send(m_Connection, To::Event, {{"id", id}});
}

void Reporter::OnUi(const std::string& xml) { Send(m_Connection, To::Ui, {{"xml", xml}}); }

void Reporter::OnRooms(const std::string& command, const standin::Params& params) {
  const session::Params own = ToSession(params);
  Send(m_Connection, To::Rooms, {{"command", command}, {"params", &own}});
}

void Reporter::OnDevice(unsigned long binding, const std::string& command,
                        const standin::Params& params, const ICmdReturn*) {
  const session::Params own = ToSession(params);
  Send(m_Connection, To::Device, {{"binding", binding}, {"command", command}, {"params", &own}});
}

void Reporter::OnAnswer(const std::string& request, const std::string* xml) {
  Send(m_Connection, To::Answer, {{"request", request}, {"xml", TextOrNull(xml)}});
}

void Reporter::OnState(const std::string* xml) {
  Send(m_Connection, To::State, {{"xml", TextOrNull(xml)}});
}

void Reporter::OnLog(unsigned int level, const std::string& text) {
  Send(m_Connection, To::Log, {{"level", static_cast<unsigned long>(level)}, {"text", text}});
}

void Reporter::OnMisuse(const std::string& what) { m_Connection.Report("misuse", what); }

// Calls to devices are looked at by the bench, which knows who speaks for them.
void Reporter::OnHint(standin::Hint hint, const std::string& what) {
  if (hint != standin::Hint::NoDeviceBound) m_Connection.Report("hint", what);
}

void Reporter::OnRead(const standin::Read& read) {
  using Accessor = standin::Read::Accessor;
  if (read.message != m_Message.first || read.name != m_Message.second) return;
  if (read.accessor == Accessor::Whole) {
    m_Whole = true;
    return;
  }
  m_Reads.emplace_back(read.parameter, read.value != nullptr);
  if (read.accessor == Accessor::Number && read.value && !read.isNumber) {
    m_Connection.Report("hint", read.name + " reads \"" + read.parameter +
                                    "\" as a number, and it is \"" +
                                    read.value->substr(0, s_LongestValue) + '"');
  }
}

}  // namespace driverprocess
