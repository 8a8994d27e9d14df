#include "benchmarks/cases.h"

#include <benchmark/benchmark.h>

#include <cstdio>

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc > 2) {
    std::fprintf(stderr, "usage: %s [--benchmark_...] [PHOTOGRAPH.jpg]\n", argv[0]);
    return 2;
  }
  AddLife();
  AddNotifications();
  AddLists();
  if (argc == 2) AddCovers(argv[1]);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
