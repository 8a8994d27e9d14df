#include "benchmarks/DriverWithSink.h"
#include "benchmarks/PrivateBus.h"
#include "benchmarks/Pugixml.h"
#include "benchmarks/cases.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>

namespace {

// A message, and what delivers it.
struct Delivery {
  const char* name;
  std::function<void(standin::Host&)> deliver;
};

Delivery Notification(const char* name, standin::Params params) {
  return {name, [message = standin::MakeNotification(name, std::move(params))](
                    standin::Host& host) { host.Notify(*message); }};
}

Delivery Command(const char* name) {
  return {name, [message = standin::MakeCommand(name, {})](standin::Host& host) {
            host.Execute(*message);
          }};
}

// In the order in which a player sends them, so that the settings report has something to say.
std::vector<Delivery> Deliveries() {
  return {Notification("PLAY_STATUS_CHANGED", {{"play_status", "Playing"}}),
          Notification("UPDATE_MEDIA_INFO", {{"media_info_1", "Waltz of the Flowers"},
                                             {"media_info_2", "The Nutcracker, Op. 71a"},
                                             {"media_info_3", "Pyotr Ilyich Tchaikovsky"}}),
          Notification("PLAY_TIME_CHANGED", {{"elapsed", "1:05"}, {"remaining", "5:48"}}),
          Command("QUERY_CURRENT_SETTINGS")};
}

// A driver that has had all deliveries.
std::shared_ptr<DriverWithSink> BusyDriver() {
  auto driver = std::make_shared<DriverWithSink>();
  for (const Delivery& delivery : Deliveries()) delivery.deliver(driver->Host());
  return driver;
}

void RunDriver(benchmark::State& state, const Delivery& delivery) {
  const auto driver = BusyDriver();
  for (auto _ : state) delivery.deliver(driver->Host());
}

void RunPugixml(benchmark::State& state, const Element& root, const std::string& expected) {
  if (PrintWithPugixml(root) != expected) state.SkipWithError("not the driver's text");
  for (auto _ : state) benchmark::DoNotOptimize(PrintWithPugixml(root));
}

void RunBus(benchmark::State& state, PrivateBus& bus, const Element& root) {
  constexpr std::size_t batch = 2000;
  while (state.KeepRunningBatch(batch)) bus.Send(root, batch);
}

}  // namespace

void AddNotifications() {
  const auto driver = BusyDriver();
  const auto bus = std::make_shared<PrivateBus>();
  for (const Delivery& delivery : Deliveries()) {
    const std::string text = driver->TextOf(delivery.deliver);
    const Element root = Describe(text);
    const std::string name = std::string("notification/") + delivery.name;
    benchmark::RegisterBenchmark((name + "/driver").c_str(), &RunDriver, delivery);
    benchmark::RegisterBenchmark((name + "/pugixml").c_str(), &RunPugixml, root, text);
    benchmark::RegisterBenchmark((name + "/dbus").c_str(), [=](benchmark::State& state) {
      RunBus(state, *bus, root);
    })->UseRealTime();
  }
}
