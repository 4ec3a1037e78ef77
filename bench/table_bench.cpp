// The alarm configuration: lookups, loads, lookups during a load, memory.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <fstream>
#include <string>
#include <thread>

#include "bench/comparison.h"
#include "bench/register.h"
#include "bench/tables.h"

namespace bench {
namespace {

/// The literal rules take seconds for larger tables.
constexpr std::size_t kMostLiteral = 10000;

template <class Table>
auto Asking(const Lazy<Table>& table) {
  return [table](const Question& question) { return (*table).Ask(question); };
}

void CompareLookups(Keys keys, const std::string& keyName, std::size_t lines) {
  const ConfigOf config{keys, lines};
  const auto literal = LazyRival<LiteralTable>(config);
  const auto abseil = LazyRival<AbseilTable>(config);
  const auto boost = LazyRival<BoostTable>(config);
  const auto rcu = LazyRival<RcuTable>(config);
  std::vector<Lazy<OurTable>> ours;
  for (const std::unique_ptr<Bundle>& bundle : Bundles()) {
    ours.push_back(LazyOurs(*bundle, config));
  }
  for (const bool hit : {true, false}) {
    // In large tables, so many that a lookup does not find the cache lines of the previous round.
    const std::size_t count = std::min(4 * lines, std::size_t{1} << 18);
    const std::string name =
        "GetAlmCfgValue/" + PowerName(lines) + " records, " + keyName + (hit ? ", hit" : ", miss");
    Comparison<Question, std::int64_t> comparison(name, Questions(keys, lines, count, hit),
                                                  [](const Question& question) { return question.value; });
    if (lines <= kMostLiteral) {
      comparison.Rival("literal", Asking(literal));
    }
    for (std::size_t i = 0; i < ours.size(); ++i) {
      comparison.Rival(Bundles()[i]->name(), Asking(ours[i]));
    }
    comparison.Rival("flat_hash_map", Asking(abseil))
        .Rival("unordered_flat_map", Asking(boost))
        .Rival("liburcu", Asking(rcu));
  }
}

template <class Table>
void CheckLoaded(const Table& table, const ConfigOf& config, const std::string& name) {
  for (const Question& question : Questions(config.keys, config.lines, 100)) {
    if (table.Ask(question) != question.value + static_cast<int>(config.version)) {
      Disagree(name);
    }
  }
}

double ProcessorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Times `Load` of what `make` returns; its destruction is not timed, nor is the preparation of a bundle,
/// which other contestants do not need: linking the file into the configuration directory.
template <class Make>
void AddLoad(const std::string& name, const ConfigOf& config, Make make) {
  benchmark::RegisterBenchmark(name.c_str(), [name, config, make](benchmark::State& state) {
    const std::string path = config.Path();
    for ([[maybe_unused]] auto unused : state) {
      auto table = make();
      Bundle::SetConfigFile(path);
      const double start = ProcessorSeconds();
      table->Load(path);
      state.SetIterationTime(ProcessorSeconds() - start);
      CheckLoaded(*table, config, name);
    }
  })->UseManualTime();
}

/// A table whose construction is its load.
template <class Table>
class NewTable {
 public:
  void Load(const std::string& path) { table_ = std::make_unique<Table>(path); }
  [[nodiscard]] std::int64_t Ask(const Question& question) const { return table_->Ask(question); }

 private:
  std::unique_ptr<Table> table_;
};

template <class Table>
void AddRivalLoad(const std::string& name, const ConfigOf& config) {
  AddLoad(name, config, [] { return std::make_unique<NewTable<Table>>(); });
}

void CompareLoads(const std::string& input, const ConfigOf& config) {
  const std::string name = "LoadConfig/" + PowerName(config.lines) + " lines, " + input + "/";
  for (const std::unique_ptr<Bundle>& bundle : Bundles()) {
    AddLoad(name + bundle->name(), config,
            [&bundle = *bundle] { return std::make_unique<OurTable>(bundle); });
  }
  if (config.lines <= kMostLiteral) {
    AddRivalLoad<LiteralTable>(name + "literal", config);
  }
  AddRivalLoad<AbseilTable>(name + "mmap and flat_hash_map", config);
  AddRivalLoad<BoostTable>(name + "mmap and unordered_flat_map", config);
  AddRivalLoad<RcuTable>(name + "mmap and liburcu", config);
}

constexpr ConfigOf kVersions[] = {{Keys::kRandom, 100000, 1, 0}, {Keys::kRandom, 100000, 1, 1}};

/// Measures a load of the same keys with other values, and lookups on this thread while another thread
/// repeats such loads.
template <class Table>
void AddReload(const std::string& contestant, const Lazy<Table>& table) {
  const std::string load = "Reload/10^5 lines, all values changed/" + contestant;
  benchmark::RegisterBenchmark(load.c_str(), [load, table, version = 0](benchmark::State& state) mutable {
    (*table).Load(kVersions[version].Path());
    for ([[maybe_unused]] auto unused : state) {
      version = 1 - version;
      (*table).Load(kVersions[version].Path());
    }
    CheckLoaded(*table, kVersions[version], load);
  });
  const std::string lookup = "GetAlmCfgValue/10^5 records, during loads/" + contestant;
  benchmark::RegisterBenchmark(lookup.c_str(), [table](benchmark::State& state) {
    static const std::vector<Question> questions = Questions(Keys::kRandom, kVersions[0].lines, 100000);
    Table& loaded = *table;
    std::atomic<bool> stop{false};
    std::thread writer([&loaded, &stop] {
      const RcuThread registered;
      for (unsigned round = 0; !stop.load(std::memory_order_relaxed); ++round) {
        loaded.Load(kVersions[round % 2].Path());
      }
    });
    std::size_t next = 0;
    for ([[maybe_unused]] auto unused : state) {
      benchmark::DoNotOptimize(loaded.Ask(questions[next]));
      next = next + 1 == questions.size() ? 0 : next + 1;
    }
    stop = true;
    writer.join();
  })->Iterations(200000);
}

void CompareReloads() {
  for (const std::unique_ptr<Bundle>& bundle : Bundles()) {
    AddReload(bundle->name(), LazyOurs(*bundle, kVersions[0]));
  }
  AddReload("new flat_hash_map", LazyRival<SwappedTable>(kVersions[0]));
  AddReload("liburcu", LazyRival<RcuTable>(kVersions[0]));
}

double ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  double pages = 0;
  statm >> pages >> pages;
  return pages * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Bytes per record by which the resident memory of a new process grows when it loads. Mapped pages of the
/// file count.
template <class Make>
void AddMemory(const std::string& contestant, Make make) {
  const ConfigOf config{Keys::kRandom, 1000000};
  const std::string name = "Memory/10^6 records/" + contestant;
  benchmark::RegisterBenchmark(name.c_str(), [config, make](benchmark::State& state) {
    const std::string path = config.Path();
    for ([[maybe_unused]] auto unused : state) {
      int ends[2];
      if (pipe(ends) != 0) {
        return;
      }
      if (fork() == 0) {
        auto table = make();
        const double before = ResidentBytes();
        table->Load(path);
        const double bytes = ResidentBytes() - before;
        _exit(write(ends[1], &bytes, sizeof bytes) == sizeof bytes ? 0 : 1);
      }
      double bytes = 0;
      state.counters["bytes"] =
          read(ends[0], &bytes, sizeof bytes) == sizeof bytes ? bytes / static_cast<double>(config.lines) : 0;
      wait(nullptr);
      close(ends[0]);
      close(ends[1]);
    }
  })->Iterations(1);
}

void CompareMemory() {
  for (const std::unique_ptr<Bundle>& bundle : Bundles()) {
    AddMemory(bundle->name(), [&bundle = *bundle] { return std::make_unique<OurTable>(bundle); });
  }
  AddMemory("literal", [] { return std::make_unique<NewTable<LiteralTable>>(); });
  AddMemory("mmap and flat_hash_map", [] { return std::make_unique<NewTable<AbseilTable>>(); });
  AddMemory("mmap and unordered_flat_map", [] { return std::make_unique<NewTable<BoostTable>>(); });
}

}  // namespace

void RegisterTables() {
  for (const std::size_t lines : {1000, 10000, 100000, 1000000}) {
    CompareLookups(Keys::kRandom, "random keys", lines);
    CompareLookups(Keys::kSequential, "sequential keys", lines);
  }
  for (const std::size_t lines : {1000, 100000, 1000000}) {
    CompareLoads("random keys", {Keys::kRandom, lines});
    CompareLoads("sequential keys", {Keys::kSequential, lines});
  }
  CompareLoads("2x2 alternatives", {Keys::kRandom, 100000, 2});
  for (const std::size_t lines : {10000, 100000}) {
    CompareLoads("16-byte keys", {Keys::kSixteen, lines});
    CompareLoads("colliding keys", {Keys::kColliding, lines});
  }
  CompareReloads();
  CompareMemory();
}

}  // namespace bench
