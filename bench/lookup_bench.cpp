// Lookup in the alarm table by size and by number of readers, GetAlmCfgValue, and the memory that tables
// take.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/contest.h"
#include "bench/stores.h"
#include "framework/platform_util.h"
#include "src/asciiutilifimpl.h"

namespace bench {
namespace {

/// As many keys as keep a lookup from finding the last round's cache lines.
constexpr std::size_t kMostQueries = std::size_t{1} << 18;

/// The store with `count` records and the keys to look for, made on first use and kept for the next
/// repetition.
template <class Store>
struct Filled {
  explicit Filled(std::size_t count) : queries(Queries(count, std::min(count, kMostQueries))) {
    for (std::size_t i = 0; i < count; ++i) {
      store.Insert(RecordOf(i));
    }
  }

  static const Filled& Of(std::size_t count) {
    static std::map<std::size_t, std::unique_ptr<Filled>> all;
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    std::unique_ptr<Filled>& filled = all[count];
    if (filled == nullptr) {
      filled = std::make_unique<Filled>(count);
    }
    return *filled;
  }

  Store store;
  std::vector<AlarmConfigRecord> queries;
};

template <class Store>
void CheckLookups(const Filled<Store>& filled, const std::string& name) {
  for (const AlarmConfigRecord& query : filled.queries) {
    std::string value;
    if (!filled.store.Find(query, value) || value != query.value) {
      Disagree(name);
    }
  }
  AlarmConfigRecord absent = filled.queries.front();
  absent.key1 += 'x';
  std::string value = "untouched";
  if (filled.store.Find(absent, value) || value != "untouched") {
    Disagree(name);
  }
}

template <class Store>
benchmark::internal::Benchmark* EnterLookup(const std::string& contest, const char* contestant,
                                            std::size_t count) {
  const std::string name = contest + "/" + contestant;
  return benchmark::RegisterBenchmark(name.c_str(), [name, count](benchmark::State& state) {
    const Filled<Store>& filled = Filled<Store>::Of(count);
    if (state.thread_index() == 0) {
      CheckLookups(filled, name);
    }
    const std::size_t queries = filled.queries.size();
    std::size_t next =
        queries / static_cast<std::size_t>(state.threads()) * static_cast<std::size_t>(state.thread_index());
    std::string value;
    for ([[maybe_unused]] auto unused : state) {
      const bool found = filled.store.Find(filled.queries[next], value);
      benchmark::DoNotOptimize(found);
      benchmark::DoNotOptimize(value);
      next = next + 1 == queries ? 0 : next + 1;
    }
  });
}

void EnterLookups(std::size_t count) {
  const std::string contest = "Lookup/" + PowerName(count) + " records";
  EnterLookup<OurStore>(contest, "ours", count);
#if BENCH_WITH_ABSEIL
  EnterLookup<AbseilStore>(contest, "Abseil", count);
#endif
  EnterLookup<StdUnorderedMap>(contest, "unordered_map", count);
  EnterLookup<StdMap>(contest, "std::map", count);
}

void EnterReaders(int threads) {
  const std::size_t count = 1000000;
  const std::string contest = "Readers/10^6 records, " + std::to_string(threads) + " threads";
  const auto run = [threads](benchmark::internal::Benchmark* entry) {
    entry->Threads(threads)->UseRealTime();
  };
  run(EnterLookup<OurStore>(contest, "ours", count));
#if BENCH_WITH_TBB
  run(EnterLookup<TbbStore>(contest, "TBB", count));
#endif
#if BENCH_WITH_ABSEIL
  run(EnterLookup<LockedStore<AbseilStore>>(contest, "Abseil, locked", count));
#endif
  run(EnterLookup<LockedStore<StdMap>>(contest, "std::map, locked", count));
}

#if BENCH_WITH_ABSEIL
/// The query as one would write it over a hash map.
std::int64_t QueryAbseil(const AbseilMap& map, std::int64_t& value, const AlarmConfigRecord& key,
                         int numKey) {
  const std::string number = NSTE_util::Trim(NSTE_util::Num2Str(numKey));
  const auto entry = map.find(KeyView(NS_ASCII::AlarmKey{key.key1, key.key2, key.key3, number}));
  const std::string text = entry == map.end() ? std::string() : entry->second;
  char* end = nullptr;
  const long converted = std::strtol(text.c_str(), &end, 10);
  if (*end != '\0') {
    return 1;
  }
  value = static_cast<int>(converted);
  return 0;
}
#endif

void EnterQuery() {
  constexpr std::size_t kCount = 1000;
  const auto queries = std::make_shared<const std::vector<AlarmConfigRecord>>(Queries(kCount, kCount));
  const auto next = std::make_shared<std::size_t>(0);
  const auto pick = [queries, next]() -> const AlarmConfigRecord& {
    *next = *next + 1 == kCount ? 0 : *next + 1;
    return (*queries)[*next];
  };
  // The number is part of the query, not of its cost.
  const auto numbers = std::make_shared<std::vector<int>>();
  for (const AlarmConfigRecord& query : *queries) {
    numbers->push_back(std::stoi(query.numKey));
  }
  for (std::size_t i = 0; i < kCount; ++i) {
    NS_ASCII::Alarm_Config_Param::Instance()->InsertRecord(RecordOf(i));
  }
  const auto ours = [pick, next, numbers] {
    const AlarmConfigRecord& key = pick();
    NS_ASCII::AsciiUtilInterfaceImpl util;
    std::int64_t value = -1;
    util.GetAlmCfgValue(value, key.key1, key.key2, key.key3, (*numbers)[*next]);
    return value;
  };
  const Contest contest("GetAlmCfgValue/10^3 records", 0, ours);
#if BENCH_WITH_ABSEIL
  const auto map = std::make_shared<AbseilMap>();
  for (std::size_t i = 0; i < kCount; ++i) {
    (*map)[RecordOf(i)] = RecordOf(i).value;
  }
  const auto rival = [pick, next, numbers, map] {
    const AlarmConfigRecord& key = pick();
    std::int64_t value = -1;
    QueryAbseil(*map, value, key, (*numbers)[*next]);
    return value;
  };
  for (std::size_t i = 0; i < kCount; ++i) {
    *next = i;
    const std::int64_t answer = ours();
    *next = i;
    if (rival() != answer) {
      Disagree("GetAlmCfgValue/10^3 records/Abseil");
    }
  }
  benchmark::RegisterBenchmark("GetAlmCfgValue/10^3 records/Abseil", [rival](benchmark::State& state) {
    for ([[maybe_unused]] auto unused : state) {
      benchmark::DoNotOptimize(rival());
    }
  });
#endif
}

std::size_t ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  std::size_t pages = 0;
  statm >> pages >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// What the process grows by when it fills a store. A child of its own, so that no freed memory is used
/// again.
template <class Store>
double BytesPerRecord(std::size_t count) {
  malloc_trim(0);
  int ends[2];
  if (pipe(ends) != 0) {
    return 0;
  }
  if (fork() == 0) {
    const std::size_t before = ResidentBytes();
    Store store;
    for (std::size_t i = 0; i < count; ++i) {
      store.Insert(RecordOf(i));
    }
    const double bytes = static_cast<double>(ResidentBytes() - before) / static_cast<double>(count);
    _exit(write(ends[1], &bytes, sizeof bytes) == sizeof bytes ? 0 : 1);
  }
  double bytes = 0;
  const bool complete = read(ends[0], &bytes, sizeof bytes) == sizeof bytes;
  wait(nullptr);
  close(ends[0]);
  close(ends[1]);
  return complete ? bytes : 0;
}

template <class Store>
void EnterMemory(const char* contestant) {
  const std::string name = std::string("Memory/10^6 records/") + contestant;
  benchmark::RegisterBenchmark(name.c_str(), [](benchmark::State& state) {
    for ([[maybe_unused]] auto unused : state) {
      state.counters["bytes_per_record"] = BytesPerRecord<Store>(1000000);
    }
  })->Iterations(1);
}

const bool entered = [] {
  for (const std::size_t count : {1000, 10000, 100000, 1000000}) {
    EnterLookups(count);
  }
  for (const int threads : {1, 2, 4}) {
    EnterReaders(threads);
  }
  EnterQuery();
  EnterMemory<OurStore>("ours");
  EnterMemory<StdMap>("std::map");
  EnterMemory<StdUnorderedMap>("unordered_map");
#if BENCH_WITH_ABSEIL
  EnterMemory<AbseilStore>("Abseil");
#endif
  return true;
}();

}  // namespace
}  // namespace bench
