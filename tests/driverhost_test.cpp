#include "driverhost/check/Comparison.h"
#include "driverhost/run/Step.h"
#include "driverprocess/Delivery.h"
#include "session/Case.h"
#include "tests/bench/Bench.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/wait.h>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::ContainsRegex;

namespace {

struct Ended {
  int status;
  std::string out;
  std::string error;
};

// Runs a shell command with driverhost as $D, the sessions as $S and its largest number as $MOST, in a directory that
// holds `session` as "s". "bad COMMAND" checks two cases with the driver that misbehaves: that command alone, and the
// session; both expect no traffic.
Ended Shell(const std::string& command, const std::string& session = "") {
  const Directory directory;
  const std::string& path = directory.path;
  std::ofstream(path + 's', std::ios::binary) << session;
  const std::string whole =
      "cd " + path + " && export TMPDIR=. " PROGRAMS " S=" SESSIONS " MOST=" + std::to_string(ULONG_MAX) +
      " && bad() { echo '{\"command\":\"'$1'\"}' | $D check --driver $BAD --timeout ${2:-30} $3 - s; }"
      " && (" +
      command + ") >out 2>err";
  const int status = std::system(whole.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(path + "out"), ReadFile(path + "err")};
}

Json Lines(const std::string& text) {
  Json lines = Json::array();
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(Json::parse(line));
  return lines;
}

}  // namespace

TEST(Driverhost, PlaysARecordedEveningAsItDidBefore) {
  const Ended ended = Shell("$D replay --json " SESSIONS "/evening.ndjson");
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(ended.out, ReadFile(DATA "/golden/evening.ndjson"));
}

TEST(Driverhost, WritesPicturesThatDecode) {
  for (const char* name : {"/covers.ndjson", "/demo.ndjson"}) {
    session::LineSplitter lines;
    lines.Append(ReadFile(SESSIONS + std::string(name)));
    const fs::path folder = SESSIONS;
    Bench bench;
    std::size_t pictures = 0;
    while (const auto line = lines.Next()) {
      if (session::KindOf(*line) != session::LineKind::Step) continue;
      const auto step = driverhost::ReadStep(*line, driverhost::From::Session, name, &folder);
      driverprocess::Deliver(bench.host, step.line.action);
      const auto* notify = std::get_if<session::Notify>(&step.line.action);
      if (!notify || notify->name != "NEW_COVERART" || !bench.Picture()) continue;
      EXPECT_EQ(std::system(("djpeg " + bench.root + "ipod/7/coverart.jpg >/dev/null").c_str()), 0) << step.place;
      ++pictures;
    }
    EXPECT_GE(pictures, 3U);
  }
}

TEST(Driverhost, TellsWhatIsWrongWithALine) {
  for (const auto& row : ReadRows("wrong_lines.txt")) {
    const std::string& error = row.at(0);
    const std::string& line = row.at(1);
    const Ended ended = Shell("$D replay --json s", "\xEF\xBB\xBF# a comment\n{\"notify\":\"A\"}\r\n\r\n" + line);
    EXPECT_EQ(ended.status, 2) << line;
    EXPECT_THAT(ended.error, ContainsRegex("^s:4: [^\n]*(" + error + ")[^\n]*\n")) << line;
    ASSERT_EQ(Lines(ended.out).size(), 5U) << ended.out;
    EXPECT_EQ(Lines(ended.out)[2].dump(), R"({"step":2,"to":"ui","xml":"<A/>"})");
    EXPECT_EQ(Lines(ended.out)[3].at("action"), "removed");
  }
}

TEST(Driverhost, SpeaksTheContract) {
  const Ended ended = Shell(
      "mkdir d; printf AB >d/f; mv s d; $D replay d/s --json --id 12 --repeat 2 --image-root r; test -d r/ipod/12",
      ReadFile(DATA "/golden/contract_session.ndjson"));
  EXPECT_EQ(ended.status, 0) << ended.error;
  EXPECT_EQ(ended.out, ReadFile(DATA "/golden/contract.ndjson"));
}

// Lists of records: a letter is a document of that name, a digit an event; "a=x" is a document with a text.
TEST(Comparison, TellsEachDifferenceInWords) {
  const auto records = [](const std::string& list) {
    std::vector<std::string> texts;
    std::istringstream words(list);
    for (std::string word; words >> word;) {
      const std::string name = word.substr(0, 1), text = word.size() > 2 ? word.substr(2) : "";
      texts.push_back(std::isdigit(word[0])
                          ? R"({"to":"event","id":)" + name + '}'
                          : R"({"to":"ui","xml":"<)" + name + "><b>" + text + "</b></" + name + ">\"}");
    }
    return texts;
  };
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"a 0 b", "a 0 b", ""},
      {"a=x", "a=y", "in <a>/<b>: expected text \"x\", came text \"y\""},
      {"a", "c", "expected element <a>, came element <c>"},
      {"0", "1", "in \"id\": expected 0, came 1"},
      {"a 0 b", "a b", "- .*:0}\n    did not come\n$"},
      {"a b", "a 0 b", "[+] .*:0}\n    was not expected\n$"},
      {"a 0 b", "a 0 0 b", "[+] .*:0}\n    came once too often\n$"},
      {"a 0 b", "0 a b", "- .*came in another place\n$"},
  };
  for (const auto& [expected, came, words] : cases) {
    const auto one = records(expected);
    const std::string told = driverhost::Differences({one.begin(), one.end()}, records(came), false);
    EXPECT_THAT(told, ContainsRegex(words)) << expected << " | " << came;
    EXPECT_EQ(told.empty(), !*words);
  }
  EXPECT_EQ(
      driverhost::Differences({R"({"xml":"<a b='1'/>","to":"ui"})"}, {R"({"to":"ui","xml":"<a b=\"1\"></a>"})"}, false),
      "");
}

TEST(Driverhost, EndsAsItSays) {
  for (const auto& row : ReadRows("commands.txt")) {
    const std::string& command = row.at(3);
    const Ended ended = Shell(command, "{\"notify\":\"A\",\"params\":{\"p\":\"v\"}}\n");
    EXPECT_EQ(std::to_string(ended.status), row[0]) << command << '\n' << ended.error;
    EXPECT_THAT(ended.out, ContainsRegex(row[1])) << command;
    EXPECT_THAT(ended.error, ContainsRegex(row[2])) << command;
  }
}
