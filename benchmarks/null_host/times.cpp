#include "benchmarks/null_host/Deliveries.h"
#include "benchmarks/null_host/NullHost.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>
#include <string>
#include <utility>

namespace {

unsigned long CallsOf(const null_host::Delivery& delivery) {
  const unsigned long before = null_host::s_Calls;
  delivery.deliverTwo();
  return null_host::s_Calls - before;
}

void Run(benchmark::State& state, const null_host::Delivery& delivery) {
  state.counters["calls"] = static_cast<double>(CallsOf(delivery)) / 2;
  for (auto _ : state) delivery.deliverTwo();
}

}  // namespace

int main(int argc, char** argv) try {
  benchmark::Initialize(&argc, argv);
  for (const auto& [contender, plugin] :
       {std::pair("/driver", MEDIA_PLUGIN), std::pair("/straight_line", STRAIGHT_LINE_PLUGIN)}) {
    for (const auto& delivery : null_host::Deliveries(plugin)) {
      benchmark::RegisterBenchmark(("message/" + delivery.name + contender).c_str(), &Run,
                                   delivery);
    }
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s\n", failure.what());
  return 1;
}
