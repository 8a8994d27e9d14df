#include "tests/FaultPoints.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

const std::string s_Old = "a text that is too long for a small string";
const std::string s_New = "another text that is too long for a small string";

constexpr int s_Errors[] = {ENOSPC, EACCES, EROFS, EIO, EMFILE};

class Faults : public testing::Test {
 protected:
  // What a driver that holds the old texts does with a message, and its settings before and after.
  struct Outcome {
    bool finished = false;
    std::string last, before, after, list;
  };

  Outcome Deliver(const Step& message, const Armed& armed) {
    Recorder recorder;
    Outcome outcome;
    standin::Host host(*m_Plugin, recorder, m_Root);
    host.Initialize(7);
    for (const Message& old : m_OldMessages) old.step(host);
    outcome.before = Report(host, recorder);
    outcome.finished = armed([&] { message(host); });
    if (!recorder.lines.empty()) outcome.last = recorder.lines.back();
    outcome.after = Report(host, recorder);

    // The next messages have to work as if nothing had failed.
    Ntf("ADD_LIST_ITEM", {{"last", "True"}})(host);
    for (const std::string& line : recorder.Take()) outcome.list += line;
    message(host);
    EXPECT_TRUE(!m_Whole.finished || Report(host, recorder) == m_Whole.after);
    host.Destroy();
    EXPECT_TRUE(standin::GetLedger().Empty());
    return outcome;
  }

  static std::string Report(standin::Host& host, Recorder& recorder) {
    Cmd("QUERY_CURRENT_SETTINGS")(host);
    return recorder.Take().back();
  }

  // Delivers the message with every fault. Returns how many points there were.
  unsigned long Survive(const Message& message, Calls calls, int error) {
    SCOPED_TRACE(message.what);
    const auto unarmed = [](const auto& act) { return act(), true; };
    m_Whole = {};
    const std::string oldList = Deliver([](standin::Host&) {}, unarmed).list;
    m_Whole = Deliver(message.step, unarmed);
    bool oldListSeen = false, noListSeen = false;
    const unsigned long points = Sweep(calls, error, [&](const Armed& armed) {
      const Outcome outcome = Deliver(message.step, armed);
      EXPECT_TRUE(outcome.finished ? outcome.last == m_Whole.last : calls == Calls::Memory);
      if (message.what.rfind("ADD_", 0) != 0 && outcome.list != m_Whole.list) {  // an item may be held in part
        EXPECT_TRUE(outcome.list == oldList || outcome.list.empty()) << outcome.list;
        (outcome.list.empty() ? noListSeen : oldListSeen) = true;
      }
      if (message.what != "bound") {
        EXPECT_TRUE(outcome.after == m_Whole.before || outcome.after == m_Whole.after) << outcome.after;
      }
      // Each flag and list of a binding may be old or new, whatever the others are.
      std::istringstream old(m_Whole.before), made(m_Whole.after), now(outcome.after);
      for (std::string a, b, c; std::getline(now, c, '>') && std::getline(old, a, '>') && std::getline(made, b, '>');) {
        EXPECT_TRUE(c == a || c == b) << c;
      }
    });
    // A header that fails leaves the old list until its node is there, then none.
    const bool header = calls == Calls::Memory && message.what.rfind("ADD_", 0) != 0 && oldList != m_Whole.list;
    EXPECT_TRUE(oldListSeen == header && noListSeen == header);
    return points;
  }

  const Directory m_Directory;
  const std::string& m_Root = m_Directory.path;
  std::optional<standin::Plugin> m_Plugin{MEDIA_PLUGIN};
  const std::vector<Message> m_OldMessages = Messages(s_Old);
  Outcome m_Whole;
};

}  // namespace

TEST_F(Faults, EveryAllocationOfEveryMessageFails) {
  unsigned long points = 0;
  for (const Message& message : Messages(s_New)) points += Survive(message, Calls::Memory, ENOMEM);
  RecordProperty("points", std::to_string(points));
}

TEST_F(Faults, EveryFileOperationOfEveryPictureFails) {
  unsigned long points = 0;
  for (const int error : s_Errors) {
    for (const Message& message : Messages(s_New)) points += Survive(message, Calls::Files, error);
  }
  RecordProperty("points", std::to_string(points));
}

TEST_F(Faults, EveryCallOfALifeFails) {
  const auto live = [this](const Armed& armed) {
    fs::remove_all(m_Root + "ipod");
    Recorder recorder;
    const bool finished = armed([&] {
      try {
        const standin::Plugin plugin(MEDIA_PLUGIN);
        standin::Host host(plugin, recorder, m_Root);
        host.Initialize(7);
        host.Persist();
        for (const char* message : {"UPDATE_MEDIA_INFO", "NEW_LIST"}) Ntf(message)(host);
      } catch (const std::runtime_error&) {
        recorder.lines = {"not loaded"};
      }
    });
    const std::string failed = "log 3 ipod::Initialize: failed to create ipod image directory (" + m_Root + "ipod/7)";
    const auto& lines = recorder.lines;
    EXPECT_TRUE(!finished || fs::exists(m_Root + "ipod/7") || lines[0] == "not loaded" || lines[2] == failed);
    EXPECT_TRUE(standin::GetLedger().Empty());
  };
  // After a failed allocation in the loader, the same process cannot load the library again.
  [[maybe_unused]] const auto liveInOwnProcess = [&](const Armed& armed) {
    const pid_t child = fork();
    if (child == 0) {
      m_Plugin.reset();
      live(armed);
      std::fflush(nullptr);
      _exit(HasFailure() ? 1 : 0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  };
  std::vector<std::function<void(const Armed&)>> rounds = {live};
#ifndef __SANITIZE_ADDRESS__  // where the loader's allocations fail too
  rounds.emplace_back(liveInOwnProcess);
#endif
  unsigned long points = 0;
  for (const auto& round : rounds) {
    points += Sweep(Calls::Memory, ENOMEM, round);
    for (const int error : s_Errors) points += Sweep(Calls::Files, error, round);
  }
  RecordProperty("points", std::to_string(points));
}

TEST(ForeignLibrary, EndsInALogLine) {
  Bench bench;
  const Step art = Ntf("NEW_COVERART", {{"cover_art", "AAAA"}, {"format", "RGB565"}, {"width", "1"}, {"height", "1"}});
  SetForeignJPEG(true);
  EXPECT_EQ(bench(art).front(),
            "log 3 ipod::Write565ToJPEGFile: Wrong JPEG library version: library is 90, caller expects 62");
  EXPECT_FALSE(bench.Picture());
  SetForeignJPEG(false);
  EXPECT_EQ(bench(art).size(), 1U);
}
