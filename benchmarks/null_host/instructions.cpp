#include "benchmarks/null_host/Deliveries.h"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <exception>

// Run by callgrind: dumps the instructions of a thousand messages of each name, as "driver/NAME"
// and "straight_line/NAME".
int main() try {
  for (const auto& [plugin, file] :
       {std::pair("driver/", MEDIA_PLUGIN), std::pair("straight_line/", STRAIGHT_LINE_PLUGIN)}) {
    for (const auto& delivery : null_host::Deliveries(file)) {
      const std::string name = plugin + delivery.name;
      for (int round = 0; round < 10; ++round) delivery.deliverTwo();
      CALLGRIND_ZERO_STATS;
      for (int round = 0; round < 500; ++round) delivery.deliverTwo();
      CALLGRIND_DUMP_STATS_AT(name.c_str());
    }
  }
} catch (const std::exception& failure) {
  std::fprintf(stderr, "%s\n", failure.what());
  return 1;
}
