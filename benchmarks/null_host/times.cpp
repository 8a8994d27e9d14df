#include "benchmarks/null_host/Deliveries.h"
#include "benchmarks/null_host/NullHost.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>

namespace {

unsigned long CallsOf(const null_host::Delivery& delivery) {
  const unsigned long before = null_host::s_Calls;
  delivery.deliverTwo();
  return null_host::s_Calls - before;
}

void Run(benchmark::State& state, const null_host::Delivery& delivery, unsigned long calls) {
  if (CallsOf(delivery) != calls) state.SkipWithError("not as many calls of the host");
  state.counters["calls"] = static_cast<double>(calls) / 2;
  for (auto _ : state) delivery.deliverTwo();
}

}  // namespace

int main(int argc, char** argv) try {
  benchmark::Initialize(&argc, argv);
  const auto driver = null_host::Deliveries(MEDIA_PLUGIN);
  const auto straight = null_host::Deliveries(STRAIGHT_LINE_PLUGIN);
  for (const auto& ours : driver) {
    for (const auto& theirs : straight) {
      if (ours.name != theirs.name) continue;
      const unsigned long calls = CallsOf(theirs);
      const std::string name = "message/" + ours.name;
      benchmark::RegisterBenchmark((name + "/driver").c_str(), &Run, ours, calls);
      benchmark::RegisterBenchmark((name + "/straight_line").c_str(), &Run, theirs, calls);
    }
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s\n", failure.what());
  return 1;
}
