#include "benchmarks/DriverWithSink.h"
#include "benchmarks/cases.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <memory>
#include <vector>

namespace {

// Loads, creates, initializes, destroys and unloads.
void RunDriver(benchmark::State& state) {
  for (auto _ : state) DriverWithSink driver;
}

void RunEmpty(benchmark::State& state) {
  for (auto _ : state) dlclose(dlopen(EMPTY_PLUGIN, RTLD_NOW | RTLD_LOCAL));
}

void RunIdle(benchmark::State& state) {
  const auto drivers = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    const DriverWithSink first;
    std::vector<std::unique_ptr<DriverWithSink>> idle;
    idle.reserve(drivers);
    const std::size_t before = HeapInUse();
    for (std::size_t i = 0; i < drivers; ++i) idle.push_back(std::make_unique<DriverWithSink>());
    state.counters["bytes_each"] =
        static_cast<double>(HeapInUse() - before) / static_cast<double>(drivers);
  }
}

}  // namespace

void AddLife() {
  benchmark::RegisterBenchmark("life/driver", &RunDriver);
  benchmark::RegisterBenchmark("life/empty_library", &RunEmpty);
  benchmark::RegisterBenchmark("idle/driver", &RunIdle)->Arg(1000)->Iterations(1);
}
