#pragma once

#include "standin/Host.h"
#include "standin/Messages.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

// Takes every text that a driver sends out.
class Sink final : public standin::Observer {
 public:
  // From now on the last text is copied to `kept`; null ends that.
  void Keep(std::string* kept) { m_Kept = kept; }

  void OnVariable(Change, unsigned long, const std::string&, const std::string& value) override {
    Take(value);
  }
  void OnEvent(unsigned long, const std::string&) override {}
  void OnUi(const std::string& xml) override { Take(xml); }
  void OnRooms(const std::string&, const standin::Params& params) override {
    Take(params.back().value);
  }
  void OnDevice(unsigned long, const std::string&, const standin::Params&,
                const ICmdReturn*) override {}
  void OnAnswer(const std::string&, const std::string* xml) override { Take(*xml); }
  void OnState(const std::string* xml) override { Take(*xml); }
  void OnLog(unsigned int, const std::string& text) override;

 private:
  void Take(const std::string& text) {
    benchmark::DoNotOptimize(text.data());
    if (m_Kept) *m_Kept = text;
  }

  std::string* m_Kept = nullptr;
};

// The plug-in, loaded, with an initialized driver.
class DriverWithSink {
 public:
  // `imageRoot` ends with a separator.
  explicit DriverWithSink(const std::string& imageRoot = "/dev/shm/mediaproxy-benchmarks/");

  standin::Host& Host() { return m_Host; }
  // The last text that comes out of what `deliver` delivers.
  template <class Deliver>
  std::string TextOf(Deliver deliver) {
    std::string text;
    m_Sink.Keep(&text);
    deliver(m_Host);
    m_Sink.Keep(nullptr);
    return text;
  }

 private:
  Sink m_Sink;
  standin::Plugin m_Plugin;
  standin::Host m_Host;
};

// Bytes of the heap in use in this process.
std::size_t HeapInUse();
