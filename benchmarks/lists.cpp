#include "benchmarks/DriverWithSink.h"
#include "benchmarks/Pugixml.h"
#include "benchmarks/cases.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

using Message = tq::auto_com<IBindMessage>;

Message Item(std::size_t number, const char* last) {
  const std::string text = std::to_string(number);
  return standin::MakeNotification("ADD_LIST_ITEM", {{"id", "library/track/" + text},
                                                     {"type", "song"},
                                                     {"text", "Track " + text + " of the album"},
                                                     {"last", last}});
}

// Only this many items differ, so that what a host delivers is still in the processor's cache.
constexpr std::size_t s_Different = 1000;

// A list's header and its items, the last one marked.
std::vector<Message> ListOf(std::size_t items) {
  const std::string count = std::to_string(items);
  std::vector<Message> messages;
  messages.push_back(standin::MakeNotification("NEW_LIST", {{"title", "All songs"},
                                                            {"total_items", count},
                                                            {"num_items", count},
                                                            {"first", "0"},
                                                            {"clear", "True"}}));
  for (std::size_t i = 1; i < items; ++i) {
    messages.push_back(i <= s_Different ? Item(i, "False") : messages[i - s_Different]);
  }
  messages.push_back(Item(items, "True"));
  return messages;
}

void Deliver(standin::Host& host, const std::vector<Message>& messages) {
  for (const Message& message : messages) host.Notify(*message);
}

void RunDriver(benchmark::State& state, std::size_t items) {
  const auto messages = ListOf(items);
  DriverWithSink driver;
  const std::size_t before = HeapInUse();
  Deliver(driver.Host(), messages);
  const std::size_t held = HeapInUse() - before;
  state.counters["bytes_per_item"] = static_cast<double>(held) / static_cast<double>(items);
  for (auto _ : state) Deliver(driver.Host(), messages);
}

std::string TextOf(std::size_t items) {
  return DriverWithSink().TextOf([&](standin::Host& host) { Deliver(host, ListOf(items)); });
}

// For pugixml, too, only that many items are different objects.
Element ShareItems(Element list) {
  Element items = *list.children.back();
  for (std::size_t i = s_Different; i + 1 < items.children.size(); ++i) {
    items.children[i] = items.children[i - s_Different];
  }
  list.children.back() = std::make_shared<Element>(std::move(items));
  return list;
}

void RunPugixml(benchmark::State& state, std::size_t items) {
  const std::string text = TextOf(items);
  const Element tree = ShareItems(Describe(text));
  if (PrintWithPugixml(tree) != text) state.SkipWithError("not the driver's text");
  state.counters["bytes_per_item"] =
      static_cast<double>(HeapOfPugixml(tree)) / static_cast<double>(items);
  for (auto _ : state) benchmark::DoNotOptimize(PrintWithPugixml(tree));
}

}  // namespace

void AddLists() {
  for (const std::size_t items : {10U, 1000U, 100000U}) {
    const std::string name = "list/" + std::to_string(items);
    benchmark::RegisterBenchmark((name + "/driver").c_str(), &RunDriver, items);
    benchmark::RegisterBenchmark((name + "/pugixml").c_str(), &RunPugixml, items);
  }
}
