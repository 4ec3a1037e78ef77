// LoadConfig of a whole file beside reading lines, splitting them and filling a map.

#include <benchmark/benchmark.h>

#include <unistd.h>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/contest.h"
#include "bench/stores.h"
#include "src/almconfig.h"

#if BENCH_WITH_BOOST
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#endif

namespace bench {
namespace {

/// A configuration file that goes when the program ends.
class ConfigFile {
 public:
  ConfigFile(std::size_t lines, unsigned alternatives)
      : path_((std::filesystem::temp_directory_path() /
               ("ascii_util_bench_" + std::to_string(getpid()) + '_' + std::to_string(lines) + 'x' +
                std::to_string(alternatives) + ".csv"))
                  .string()) {
    std::ofstream(path_, std::ios::binary) << FileOf(lines, alternatives);
  }
  ~ConfigFile() { std::filesystem::remove(path_); }
  ConfigFile(const ConfigFile&) = delete;
  ConfigFile& operator=(const ConfigFile&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }

  static const ConfigFile& Of(std::size_t lines, unsigned alternatives) {
    static std::map<std::pair<std::size_t, unsigned>, std::unique_ptr<ConfigFile>> all;
    std::unique_ptr<ConfigFile>& file = all[{lines, alternatives}];
    if (file == nullptr) {
      file = std::make_unique<ConfigFile>(lines, alternatives);
    }
    return *file;
  }

 private:
  std::string path_;
};

class OurLoad {
 public:
  void Load(const std::string& path) { config_.LoadConfig(path.c_str()); }
  bool Find(const AlarmConfigRecord& key, std::string& value) const {
    return config_.GetValue(key, value) == 0;
  }
  [[nodiscard]] std::size_t size() const { return config_.values().size(); }

 private:
  NS_ASCII::Alarm_Config_Param config_;
};

class LiteralLoad : public LiteralStore {
 public:
  void Load(const std::string& path) {
    std::ifstream file(path);
    config_.LoadConfig(file);
  }
};

#if BENCH_WITH_BOOST
/// The plain way: a line, its columns, their alternatives, an entry for each combination.
template <class Store>
class PlainLoad : public Store {
 public:
  void Load(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    std::vector<std::string> columns;
    std::vector<std::string> key1s;
    std::vector<std::string> key2s;
    while (std::getline(file, line)) {
      if (line.empty() || line[0] == '#') {
        continue;
      }
      boost::trim(line);
      boost::split(columns, line, boost::is_any_of("\t"));
      if (columns.size() != 5) {
        continue;
      }
      boost::split(key1s, columns[0], boost::is_any_of("/"));
      boost::split(key2s, columns[1], boost::is_any_of("/"));
      for (const std::string& key1 : key1s) {
        for (const std::string& key2 : key2s) {
          this->Insert({key1, key2, columns[3], columns[2], columns[4]});
        }
      }
    }
  }
};
#endif

template <class Loader>
void EnterLoad(const std::string& contest, const char* contestant, std::size_t lines, unsigned alternatives) {
  const std::string name = contest + "/" + contestant;
  const std::size_t records = lines * alternatives * alternatives;
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    const std::string& path = ConfigFile::Of(lines, alternatives).path();
    for ([[maybe_unused]] auto unused : state) {
      // Freeing what was loaded is not timed.
      const auto loader = std::make_unique<Loader>();
      const auto start = std::chrono::steady_clock::now();
      loader->Load(path);
      state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
      std::string value;
      const AlarmConfigRecord last = RecordOf(lines - 1);
      if (loader->size() != records || !loader->Find(last, value) || value != last.value) {
        Disagree(name);
      }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(records) * state.iterations());
  })->UseManualTime();
}

const bool entered = [] {
  for (const std::size_t lines : {1000, 100000, 1000000}) {
    for (const unsigned alternatives : {1U, 2U}) {
      const std::string side = std::to_string(alternatives);
      const std::string contest = "LoadConfig/" + PowerName(lines) + " lines, " + side + "x" + side;
      EnterLoad<OurLoad>(contest, "ours", lines, alternatives);
      EnterLoad<LiteralLoad>(contest, "literal", lines, alternatives);
#if BENCH_WITH_BOOST
      EnterLoad<PlainLoad<StdMap>>(contest, "std::map", lines, alternatives);
#if BENCH_WITH_ABSEIL
      EnterLoad<PlainLoad<AbseilStore>>(contest, "Abseil", lines, alternatives);
#endif
#endif
    }
  }
  return true;
}();

}  // namespace
}  // namespace bench
