#include "tests/bench/Bench.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <memory>
#include <sstream>

namespace fs = std::filesystem;

namespace {

std::string Checked(const std::string& xml) {
  EXPECT_NE(ParseXml(xml), nullptr) << "not well-formed: " << xml;
  return xml;
}

std::string Joined(const standin::Params& params) {
  std::string text;
  for (const auto& param : params) text += ' ' + param.name + ':' + param.type + '=' + param.value;
  return text;
}

struct Grouping : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

// Sets the locale that the environment names, if any, and a C++ locale that groups digits.
class Surroundings : public testing::Environment {
  void SetUp() override {
    const char* name = std::getenv("MEDIAPROXY_TEST_LOCALE");
    if (!name) return;
    std::locale::global(std::locale(std::locale::classic(), new Grouping));
    ASSERT_NE(std::setlocale(LC_ALL, name), nullptr) << name;
  }
};

const auto* const s_Surroundings = testing::AddGlobalTestEnvironment(new Surroundings);

}  // namespace

Directory::Directory() : path(testing::TempDir() + "mediaproxy.XXXXXX") {
  EXPECT_NE(mkdtemp(path.data()), nullptr);
  path += '/';
}

Directory::~Directory() { fs::remove_all(path); }

std::vector<std::string> Recorder::Take() { return std::exchange(lines, {}); }

void Recorder::OnVariable(Change change, unsigned long id, const std::string& name, const std::string& value) {
  static constexpr const char* words[] = {"added", "changed", "removed"};
  lines.push_back(words[static_cast<int>(change)] + (' ' + std::to_string(id)) + ' ' + name + '=' + value);
}

void Recorder::OnEvent(unsigned long id, const std::string&) { lines.push_back("event " + std::to_string(id)); }

void Recorder::OnUi(const std::string& xml) { lines.push_back("ui " + Checked(xml)); }

void Recorder::OnRooms(const std::string& command, const standin::Params& params) {
  for (const auto& param : params) Checked(param.value);
  lines.push_back("rooms " + command + Joined(params));
}

void Recorder::OnDevice(unsigned long binding, const std::string& command, const standin::Params& params,
                        const ICmdReturn* ret) {
  lastReturn = ret;
  lines.push_back("device " + std::to_string(binding) + ' ' + command + Joined(params));
}

void Recorder::OnAnswer(const std::string& request, const std::string* xml) {
  lines.push_back("answer " + request + ' ' + (xml ? Checked(*xml) : "nothing"));
}

void Recorder::OnState(const std::string* xml) { lines.push_back("state " + (xml ? Checked(*xml) : "nothing")); }

void Recorder::OnLog(unsigned int level, const std::string& text) {
  lines.push_back("log " + std::to_string(level) + ' ' + text);
}

Step Ntf(const std::string& name, const standin::Params& params) {
  return [=](standin::Host& host) { host.Notify(*standin::MakeNotification(name, params)); };
}

Step NtfXml(const std::string& name, const std::string& xml) {
  return [=](standin::Host& host) { host.Notify(*standin::MakeNotificationFromXml(name, xml)); };
}

Step Cmd(const std::string& name, const standin::Params& params) {
  return [=](standin::Host& host) { host.Execute(*standin::MakeCommand(name, params)); };
}

Step Req(const std::string& name) {
  return [=](standin::Host& host) { host.Request(*standin::MakeCommand(name, {})); };
}

const standin::Plugin& ThePlugin() {
  static const standin::Plugin plugin(MEDIA_PLUGIN);
  return plugin;
}

static const std::string& ImageRoot() {
  static const Directory directory;
  return directory.path;
}

Bench::Bench() : root(ImageRoot()), host(ThePlugin(), recorder, root) {
  fs::remove(root + "ipod/7/coverart.jpg");
  EXPECT_EQ(host.Initialize(7), 0);
  recorder.Take();
}

Bench::~Bench() {
  host.Destroy();
  EXPECT_TRUE(standin::GetLedger().Empty());
}

std::vector<std::string> Bench::operator()(const Step& step) {
  step(host);
  return recorder.Take();
}

std::optional<std::string> Bench::Picture() const {
  const std::string file = root + "ipod/7/coverart.jpg";
  return fs::exists(file) ? std::optional(ReadFile(file)) : std::nullopt;
}

standin::Params Notification::Params(const std::function<std::string(std::size_t)>& text) const {
  standin::Params params;
  for (const auto& read : reads) params.push_back({read.substr(read.find(' ') + 1), text(params.size())});
  return params;
}

std::vector<Notification> ReadNotifications() {
  std::vector<Notification> all;
  for (const auto& row : ReadRows("notifications.txt")) all.push_back({row[0], {row.begin() + 1, row.end()}});
  return all;
}

std::vector<Message> Messages(const std::string& text) {
  std::vector<Message> all;
  for (const auto& notification : ReadNotifications()) {
    all.push_back({notification.name, Ntf(notification.name, notification.Params([&](std::size_t) { return text; }))});
  }
  for (const char* format : {"RGB565", "RGB888", "JPEG"}) {
    all.push_back({format, Ntf("NEW_COVERART", {{"cover_art", "AAD4AOAHHwA="},
                                                {"width", "2 " + text},
                                                {"height", "1 " + text},
                                                {"format", format},
                                                {"size", "8 " + text}})});
  }
  for (const char* name : {"PLAY_STATUS", "ONLINE_STATUS", "SHUFFLE_MODES", "REPEAT_MODES", "NOTHING"}) {
    all.push_back({name, Req(std::string("GET_") + name)});
  }
  const std::vector<Message> others = {
      {"playing", Ntf("PLAY_STATUS_CHANGED", {{"play_status", "Playing"}})},
      {"document", NtfXml("X", "<document><p>" + text + "</p></document>")},
      {"command inside", NtfXml("X", "<command name='RESET'><param name='ROOM_ID'>5" + text + "</param></command>")},
      {"reset", Cmd("RESET", {{"ROOM_ID", "5", "INTEGER"}, {"A_PARAMETER", text}})},
      {"report", Cmd("QUERY_CURRENT_SETTINGS")},
      {"other command", Cmd("A_COMMAND_FOR_THE_DEVICE", {{"P", text}})},
      {"state", [](standin::Host& host) { host.Persist(); }},
      {"unbound", [](standin::Host& host) { host.Unbind(5001, "PLAYER"); }},
      {"bound", [text](standin::Host& host) {
         host.Bind(5001, "PLAYER",
                   {{"has_play", text.size() % 2 == 0 ? "True" : "False"},
                    {"shuffle_modes", text},
                    {"repeat_modes", text},
                    {"media_labels", text}});
       }}};
  all.insert(all.end(), others.begin(), others.end());
  return all;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::vector<std::string>> ReadRows(const std::string& name) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream file(ReadFile(DATA "/" + name));
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream columns(line);
    rows.emplace_back();
    for (std::string column; std::getline(columns, column, '\t');) rows.back().push_back(column);
  }
  return rows;
}

std::string Descriptors() {
  std::string open;
  std::error_code gone;
  for (int i = 0; i < 64; ++i) {  // a leaked descriptor has a low number
    const auto file = fs::read_symlink("/proc/self/fd/" + std::to_string(i), gone);
    if (!gone) open += std::to_string(i) + ' ' + file.string() + '\n';
  }
  return open;
}

XmlDocument ParseXml(const std::string& xml) {
  constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE;
  return {xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, "UTF-8", options), &xmlFreeDoc};
}

std::string RootText(const XmlDocument& document) {
  const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> text(xmlBufferCreate(), &xmlBufferFree);
  xmlNodeDump(text.get(), document.get(), xmlDocGetRootElement(document.get()), 0, 0);
  return reinterpret_cast<const char*>(xmlBufferContent(text.get()));
}
