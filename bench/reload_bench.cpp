// Lookups while another thread loads: how fast one reader gets on, and how fast the writer does. All stores
// that may legally be used so.

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench/contest.h"
#include "bench/stores.h"

namespace bench {
namespace {

constexpr std::size_t kRecords = 1000000;
constexpr std::size_t kQueries = std::size_t{1} << 18;
constexpr auto kDuration = std::chrono::milliseconds(250);

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

const std::vector<AlarmConfigRecord>& AllRecords() {
  static const std::vector<AlarmConfigRecord> records = Records(kRecords);
  return records;
}

const std::vector<AlarmConfigRecord>& AllQueries() {
  static const std::vector<AlarmConfigRecord> queries = Queries(kRecords, kQueries);
  return queries;
}

/// Loads the records again and again until told to stop; returns records per second. Every round changes
/// every value, as a changed configuration would.
template <class Store>
double Write(Store& store, const std::atomic<bool>& stop) {
  const Clock::time_point start = Clock::now();
  std::size_t written = 0;
  AlarmConfigRecord changed;
  for (std::size_t round = 0; !stop.load(std::memory_order_relaxed); ++round) {
    for (std::size_t i = 0; i < kRecords && !stop.load(std::memory_order_relaxed); ++i, ++written) {
      changed = AllRecords()[i];
      changed.value = AllRecords()[(i + round + 1) % kRecords].value;
      store.Insert(changed);
    }
  }
  return static_cast<double>(written) / SecondsSince(start);
}

/// Looks records up for the given time; returns lookups per second.
template <class Store>
double Read(const Store& store) {
  const Clock::time_point start = Clock::now();
  std::size_t read = 0;
  std::string value;
  while (Clock::now() - start < kDuration) {
    for (std::size_t i = 0; i < 1000; ++i, ++read) {
      if (!store.Find(AllQueries()[read % kQueries], value)) {
        Disagree("a store under load");
      }
    }
  }
  return static_cast<double>(read) / SecondsSince(start);
}

template <class Store>
Store& FilledStore() {
  static const std::unique_ptr<Store> store = [] {
    auto filled = std::make_unique<Store>();
    for (const AlarmConfigRecord& record : AllRecords()) {
      filled->Insert(record);
    }
    return filled;
  }();
  return *store;
}

template <class Store>
void EnterReload(const char* contestant) {
  const std::string contest = "Reload/10^6 records";
  benchmark::RegisterBenchmark((contest + "/" + contestant).c_str(),
                               [](benchmark::State& state) {
                                 Store& store = FilledStore<Store>();
                                 AllQueries();
                                 for ([[maybe_unused]] auto unused : state) {
                                   state.counters["reads_alone"] = Read(store);
                                   std::atomic<bool> stop{false};
                                   double writes = 0;
                                   std::thread writer([&] { writes = Write(store, stop); });
                                   state.counters["reads_during_load"] = Read(store);
                                   stop = true;
                                   writer.join();
                                   state.counters["writes"] = writes;
                                 }
                               })
      ->Iterations(1)
      ->UseRealTime();
}

const bool entered = [] {
  EnterReload<OurStore>("ours");
#if BENCH_WITH_TBB
  EnterReload<TbbStore>("TBB");
#endif
#if BENCH_WITH_ABSEIL
  EnterReload<LockedStore<AbseilStore>>("Abseil, locked");
#endif
  EnterReload<LockedStore<StdUnorderedMap>>("unordered_map, locked");
  EnterReload<LockedStore<StdMap>>("std::map, locked");
  return true;
}();

}  // namespace
}  // namespace bench
