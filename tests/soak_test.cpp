#include "tests/FaultPoints.h"
#include "tests/bench/Bench.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <locale>
#include <memory>
#include <random>
#include <string>

namespace fs = std::filesystem;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr long s_Tolerance = 1L << 30;  // the sanitizer keeps freed blocks for a while
#else
constexpr long s_Tolerance = 64;  // KiB
#endif

// How often to go round: the number in the environment, else a short sample.
unsigned long Rounds(const char* variable, unsigned long sample) {
  const char* text = std::getenv(variable);
  return text ? std::stoul(text) : sample;
}

long ResidentKiB() {
  std::ifstream file("/proc/self/statm");
  long size = 0, resident = 0;
  file >> size >> resident;
  return resident * sysconf(_SC_PAGESIZE) / 1024;
}

// Messages in an order and with texts that the seed decides.
class Mix {
 public:
  explicit Mix(unsigned seed) : m_Random(seed), m_Messages(Messages("text of " + std::to_string(seed))) {
    for (const Message& message : Messages(std::string(m_Random() % 200, 'x'))) m_Messages.push_back(message);
  }

  void Next(standin::Host& host) { m_Messages[m_Random() % m_Messages.size()].step(host); }

 private:
  std::mt19937 m_Random;
  std::vector<Message> m_Messages;
};

// What a session must leave as it found it.
std::string Surroundings() {
  std::string all =
      Descriptors() + std::setlocale(LC_ALL, nullptr) + std::locale().name() + fs::current_path().string();
  for (int number = 1; number < SIGRTMAX; ++number) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    all += ' ' + std::to_string(reinterpret_cast<std::uintptr_t>(action.sa_handler));
  }
  const mode_t mask = umask(0);
  umask(mask);
  for (char** variable = environ; *variable; ++variable) all += std::string("\n") + *variable;
  return all + '\n' + std::to_string(mask);
}

class Soak : public testing::Test {
 protected:
  Soak() { fs::copy_file(MEDIA_PLUGIN, m_Plugin); }

  const Directory m_Directory;
  const std::string& m_Root = m_Directory.path;
  const std::string m_Plugin = m_Root + "plugin.so";
};

}  // namespace

TEST_F(Soak, LoadsAndUnloadsWithoutATrace) {
  const unsigned long cycles = Rounds("MEDIAPROXY_CYCLES", 300);
  const std::string surroundings = Surroundings();
  long resident = 0, blocks = 0, lost = 0;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  for (unsigned long cycle = 0; cycle < cycles; ++cycle) {
    if (cycle == 100) resident = ResidentKiB();
    blocks = LiveBlocks();
    {
      const standin::Plugin plugin(m_Plugin);
      Recorder recorder;
      standin::Host host(plugin, recorder, m_Root);
      host.Initialize(cycle % 10);
      Mix mix(static_cast<unsigned>(cycle % 10));
      for (int i = 0; i < 20; ++i) mix.Next(host);
    }
    lost += cycle < 10 ? 0 : LiveBlocks() - blocks;
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(lost, 0);
  EXPECT_TRUE(Surroundings() == surroundings);
  EXPECT_EQ(ReadFile("/proc/self/maps").find(m_Plugin), std::string::npos);
  EXPECT_TRUE(standin::GetLedger().Empty());
  RecordProperty("growth", std::to_string(ResidentKiB() - resident));
#ifndef EMULATED  // an emulator keeps what it has translated of each library
  EXPECT_LE(ResidentKiB(), resident + s_Tolerance);
#endif
}

TEST_F(Soak, FiftyDriversActAsEachAlone) {
  const standin::Plugin plugin(m_Plugin);
  struct Driver {
    Driver(const standin::Plugin& plugin, const std::string& root, unsigned seed)
        : host(plugin, recorder, root), mix(seed) {
      host.Initialize(seed);
    }
    Recorder recorder;
    standin::Host host;
    Mix mix;
  };
  std::vector<std::unique_ptr<Driver>> all;
  for (unsigned seed = 0; seed < 50; ++seed) all.push_back(std::make_unique<Driver>(plugin, m_Root, seed));
  for (int i = 0; i < 100; ++i) {
    for (const auto& driver : all) driver->mix.Next(driver->host);
  }
  for (unsigned seed = 0; seed < 50; ++seed) {
    Driver alone(plugin, m_Root, seed);
    for (int i = 0; i < 100; ++i) alone.mix.Next(alone.host);
    EXPECT_EQ(all[seed]->recorder.lines, alone.recorder.lines) << seed;
  }
  all.clear();
  EXPECT_TRUE(standin::GetLedger().Empty());
}

TEST(LongRun, HoldsNoMoreAfterEachRound) {
  const unsigned long rounds = 4, messages = Rounds("MEDIAPROXY_MESSAGES", 20000);
  Bench bench;
  std::vector<long> blocks, resident;
  for (unsigned long round = 0; round < rounds; ++round) {
    {
      Mix mix(1);
      for (unsigned long i = 0; i < messages / rounds; ++i) {
        mix.Next(bench.host);
        bench.recorder.lines.clear();
      }
    }
    blocks.push_back(LiveBlocks());
    resident.push_back(ResidentKiB());
  }
  EXPECT_EQ(blocks[1], blocks[2]);
  EXPECT_EQ(blocks[2], blocks[3]);
  EXPECT_LE(resident[3], resident[1] + s_Tolerance);
}
