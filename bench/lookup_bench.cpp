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
#include "bench/util.h"
#include "framework/platform_util.h"

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
  EnterLookup<LiteralStore>(contest, "literal", count);
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

/// What is asked for, in turns.
class Questions {
 public:
  explicit Questions(std::size_t count) : keys_(Queries(count, count)) {
    for (const AlarmConfigRecord& key : keys_) {
      numbers_.push_back(std::stoi(key.numKey));  // The number is part of the question, not of its cost.
    }
  }

  void StartAt(std::size_t at) { at_ = at; }
  [[nodiscard]] std::size_t size() const { return keys_.size(); }

  template <class Query>
  std::int64_t Ask(Query query) {
    at_ = at_ + 1 == keys_.size() ? 0 : at_ + 1;
    std::int64_t value = -1;
    query(value, keys_[at_], numbers_[at_]);
    return value;
  }

 private:
  std::vector<AlarmConfigRecord> keys_;
  std::vector<int> numbers_;
  std::size_t at_ = 0;
};

constexpr const char* kQueryContest = "GetAlmCfgValue/10^3 records";

/// Enters `rival` once it has answered every question as `ours` does.
template <class Ours, class Rival>
void EnterQueryAgainst(const std::shared_ptr<Questions>& questions, Ours ours, const char* contestant,
                       Rival rival) {
  const std::string name = std::string(kQueryContest) + "/" + contestant;
  for (std::size_t i = 0; i < questions->size(); ++i) {
    questions->StartAt(i);
    const std::int64_t answer = questions->Ask(ours);
    questions->StartAt(i);
    if (questions->Ask(rival) != answer) {
      Disagree(name);
    }
  }
  benchmark::RegisterBenchmark(name.c_str(), [questions, rival](benchmark::State& state) {
    for ([[maybe_unused]] auto unused : state) {
      benchmark::DoNotOptimize(questions->Ask(rival));
    }
  });
}

#if BENCH_WITH_ABSEIL
/// The query as one would write it over a hash map.
void QueryAbseil(const AbseilMap& map, std::int64_t& value, const AlarmConfigRecord& key, int numKey) {
  const std::string number = NSTE_util::Trim(NSTE_util::Num2Str(numKey));
  const auto entry = map.find(KeyView(NS_ASCII::AlarmKey{key.key1, key.key2, key.key3, number}));
  const std::string text = entry == map.end() ? std::string() : entry->second;
  char* end = nullptr;
  const long converted = std::strtol(text.c_str(), &end, 10);
  if (*end == '\0') {
    value = static_cast<int>(converted);
  }
}
#endif

/// The query as the rules write it down.
void QueryLiteral(const literal::AlarmConfig& config, std::int64_t& value, const AlarmConfigRecord& key,
                  int numKey) {
  const literal::Record record{key.key1, key.key2, literal::Trim(literal::Num2Str(numKey)), key.key3, {}};
  std::string text;
  config.GetValue(record, text);
  int converted = 0;
  if (literal::Str2Num(text, converted, 10)) {
    value = converted;
  }
}

void EnterQuery() {
  constexpr std::size_t kCount = 1000;
  const auto questions = std::make_shared<Questions>(kCount);
  const auto config = std::make_shared<literal::AlarmConfig>();
#if BENCH_WITH_ABSEIL
  const auto map = std::make_shared<AbseilMap>();
#endif
  for (const AlarmConfigRecord& record : Records(kCount)) {
    NS_ASCII::Alarm_Config_Param::Instance()->InsertRecord(record);
    config->InsertRecord({record.key1, record.key2, record.numKey, record.key3, record.value});
#if BENCH_WITH_ABSEIL
    (*map)[record] = record.value;
#endif
  }
  const auto ours = [](std::int64_t& value, const AlarmConfigRecord& key, int numKey) {
    Util().GetAlmCfgValue(value, key.key1, key.key2, key.key3, numKey);
  };
  EnterQueryAgainst(questions, ours, "ours", ours);
  EnterQueryAgainst(questions, ours, "literal",
                    [config](std::int64_t& value, const AlarmConfigRecord& key, int numKey) {
                      QueryLiteral(*config, value, key, numKey);
                    });
#if BENCH_WITH_ABSEIL
  EnterQueryAgainst(questions, ours, "Abseil",
                    [map](std::int64_t& value, const AlarmConfigRecord& key, int numKey) {
                      QueryAbseil(*map, value, key, numKey);
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
  EnterMemory<LiteralStore>("literal");
  EnterMemory<StdMap>("std::map");
  EnterMemory<StdUnorderedMap>("unordered_map");
#if BENCH_WITH_ABSEIL
  EnterMemory<AbseilStore>("Abseil");
#endif
  return true;
}();

}  // namespace
}  // namespace bench
