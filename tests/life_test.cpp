#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

TEST(Life, RegistersEachNameOnceAndInOrder) {
  Lines expected;
  for (const auto& row : ReadRows("registrations.txt")) expected.push_back(row[0]);
  EXPECT_EQ(Bench().host.Registered(), expected);
}

TEST(Life, ReadsEachParameterInOrderByItsAccessor) {
  struct : Recorder {
    Lines reads;
    void OnRead(const standin::Read& read) override {
      const bool text = read.accessor == standin::Read::Accessor::Text;
      if (read.accessor == standin::Read::Accessor::Whole) return;
      reads.push_back((text ? "text " : "value ") + read.parameter + (read.value ? '=' + *read.value : ""));
    }
  } recorder;
  for (const auto& notification : ReadNotifications()) {
    standin::Host host(ThePlugin(), recorder, "/proc/");
    recorder.reads.clear();
    Ntf(notification.name)(host);
    EXPECT_EQ(recorder.reads, notification.reads) << notification.name;
  }
  standin::Host host(ThePlugin(), recorder, "/proc/");
  recorder.reads.clear();
  Ntf("PLAY_TIME_CHANGED", {{"remaining", "2"}})(host);
  EXPECT_EQ(recorder.reads, (Lines{"text elapsed", "text remaining=2"}));
}

TEST(Life, VariablesComeWithInitializeAndGoEachOnItsOwn) {
  struct : Recorder {
    void OnVariable(Change change, unsigned long id, const std::string& name, const std::string& value) override {
      Recorder::OnVariable(change, id, name, value);
      if (change == Change::Removed) throw std::runtime_error(name);
    }
  } recorder;
  standin::Host host(ThePlugin(), recorder, "/proc/");
  host.Persist();
  EXPECT_EQ(recorder.Take(), Lines{"state <State/>"});
  EXPECT_EQ(host.Initialize(1), 0);
  EXPECT_EQ(recorder.Take(), (Lines{"added 1000 PLAY_STATUS=0", "added 1001 ONLINE_STATUS=0",
                                    "log 3 ipod::Initialize: failed to create ipod image directory (/proc/ipod/1)"}));
  Ntf("PLAY_STATUS_CHANGED", {{"play_status", "Playing"}})(host);
  recorder.Take();
  host.Persist();
  EXPECT_EQ(recorder.Take(), Lines{"state <State/>"});
  host.Destroy();
  EXPECT_EQ(recorder.Take(), (Lines{"removed 1000 PLAY_STATUS=Playing", "removed 1001 ONLINE_STATUS=0"}));
  EXPECT_TRUE(standin::GetLedger().Empty());
}

TEST(Life, DestroyedBeforeInitializeItRemovesNothing) {
  Recorder recorder;
  {
    const standin::Host one(ThePlugin(), recorder, "/");
    const standin::Host two(ThePlugin(), recorder, "/");
    EXPECT_EQ(standin::GetLedger().nodes, 2U);
  }
  EXPECT_EQ(recorder.Take(), Lines());
  EXPECT_TRUE(standin::GetLedger().Empty());
}

TEST(Life, HoldsItsDocumentWhileTheVariablesGo) {
  struct : Recorder {
    void OnVariable(Change, unsigned long, const std::string&, const std::string&) override {
      EXPECT_EQ(standin::GetLedger().nodes, 1U);
    }
  } recorder;
  standin::Host host(ThePlugin(), recorder, "/proc/");
  host.Initialize(1);
}

TEST(Life, ComposesThePathsFromRootAndId) {
  const Directory made;
  const std::string root = made.path.substr(0, made.path.size() - 1);
  fs::create_directories(root + "/file");
  std::ofstream(root + "/file/ipod") << "in the way";
  fs::create_directories(root + "/there/ipod/7");
  std::ofstream(root + "/there/ipod/8") << "a file";
  const std::string most = std::to_string(ULONG_MAX);
  const std::string failed = "log 3 ipod::Initialize: failed to create ipod image directory (" + root;
  const std::tuple<const char*, unsigned long, std::string, Lines> cases[] = {
      {"/new/", 0, "/new/ipod/0", {}},
      {"/new/", 1234567, "/new/ipod/1234567", {}},
      {"/new/", ULONG_MAX, "/new/ipod/" + most, {}},
      {"/a/b/c/", 7, "/a/b/c/ipod/7", {}},
      {"/unended", 7, "/unendedipod/7", {}},
      {"/there/", 7, "/there/ipod/7", {}},
      {"/there/", 8, "/there/ipod/8", {}},
      {"/file/", 7, "/file/ipod/7", {failed + "/file/ipod/7)"}},
  };
  for (const auto& [base, id, directory, log] : cases) {
    SCOPED_TRACE(directory);
    Recorder recorder;
    standin::Host host(ThePlugin(), recorder, root + base);
    EXPECT_EQ(host.Initialize(id), 0);
    Lines lines = recorder.Take();
    lines.erase(lines.begin(), lines.begin() + 2);
    EXPECT_EQ(lines, log);
    Ntf("NEW_COVERART", {{"format", "JPEG"}, {"size", "2"}, {"cover_art", "QUJD"}, {"width", "w"}})(host);
    EXPECT_EQ(recorder.Take().back(), "ui <NEW_COVER_ART><image_path>ipod/" + std::to_string(id) +
                                          "/coverart.jpg</image_path><width>w</width><height/></NEW_COVER_ART>");
    if (fs::is_directory(root + directory)) {
      EXPECT_EQ(ReadFile(root + directory + "/coverart.jpg"), "AB");
    }
  }
}

TEST(Life, GoesOnWithoutAPathService) {
  Recorder recorder;
  standin::Host host(ThePlugin(), recorder, std::nullopt);
  EXPECT_EQ(host.Initialize(1), 0);
  EXPECT_EQ(recorder.Take().back(), "log 3 ipod::Initialize: the host has no path service");
  Ntf("NEW_COVERART", {{"format", "JPEG"}})(host);
  EXPECT_EQ(recorder.Take(), (Lines{"log 3 ipod::Write565ToJPEGFile:  failed to create .jpg file ",
                                    "ui <NEW_COVER_ART><image_path/><width/><height/></NEW_COVER_ART>"}));
}

TEST(Life, InitializesAgainForAnotherIdAndSaysSo) {
  Bench bench;
  EXPECT_EQ(bench.host.Initialize(9), 1);
  EXPECT_EQ(bench.recorder.Take(), Lines());
  EXPECT_TRUE(fs::is_directory(bench.root + "ipod/9"));
}

TEST(Life, TellsTheBaseClassOfEveryBinding) {
  Bench bench;
  bench.host.Bind(5001, "PLAYER", {});
  bench.host.Bind(5002, "OTHER", {});
  EXPECT_EQ(bench.host.Bindings(), (std::map<unsigned long, std::string>{{5001, "PLAYER"}, {5002, "OTHER"}}));
  bench.host.Unbind(5001, "PLAYER");
  bench.host.Unbind(5002, "OTHER");
  EXPECT_TRUE(bench.host.Bindings().empty());
}

TEST(Life, HoldsOneDocumentAtATime) {
  Bench bench;
  for (const char* header : {"NEW_LIST", "NEW_MENU", "NEW_LIST"}) {
    bench(Ntf(header));
    bench(Ntf("ADD_LIST_ITEM", {{"last", "True"}}));
    EXPECT_EQ(standin::GetLedger().nodes, 1U);
  }
}
