#ifndef BENCH_TABLES_H_
#define BENCH_TABLES_H_

#include <absl/container/flat_hash_map.h>
#include <absl/hash/hash.h>
#include <urcu.h>
#include <urcu/rculfhash.h>

#include <array>
#include <atomic>
#include <boost/unordered/unordered_flat_map.hpp>
#include <charconv>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/bundle.h"
#include "bench/by_hand.h"
#include "bench/inputs.h"
#include "tests/literal_rules.h"

/// The alarm configuration of a bundle, and containers that a caller could use instead. Every table has
///   Table(path)                              loads the file; `OurTable(bundle)` loads none
///   std::int64_t Ask(const Question&) const  the configured value; 0 when there is none
/// and those that may be read on other threads during a load also have
///   void Load(path)                          loads another version of the file
/// Threads that use the tables of liburcu hold an `RcuThread`.
namespace bench {

/// A file of `ConfigFile`, written on first use.
struct ConfigOf {
  Keys keys;
  std::size_t lines;
  unsigned alternatives = 1;
  unsigned version = 0;

  [[nodiscard]] std::string Path() const;
};

/// Another copy of a bundle, with a configuration of its own.
class OurTable {
 public:
  explicit OurTable(const Bundle& bundle) : bundle_(bundle.Another()) {}
  void Load(const std::string& path) {
    Bundle::SetConfigFile(path);
    bundle_->Init();
  }
  [[nodiscard]] std::int64_t Ask(const Question& question) const {
    std::int64_t value = -1;
    bundle_->util().GetAlmCfgValue(value, question.key1, question.key2, question.key3, question.number);
    return value;
  }

 private:
  std::unique_ptr<Bundle> bundle_;
};

class LiteralTable {
 public:
  explicit LiteralTable(const std::string& path);
  [[nodiscard]] std::int64_t Ask(const Question& question) const;

 private:
  literal::AlarmConfig config_;
};

/// A file, mapped into memory for as long as the object lives.
class MappedFile {
 public:
  explicit MappedFile(const std::string& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  [[nodiscard]] std::string_view text() const { return text_; }

 private:
  std::string_view text_;
};

/// The key fields of a record: columns 1 to 4, in a file or a question.
using KeyView = std::array<std::string_view, 4>;

struct KeyHash {
  using is_avalanching = void;  // For boost::unordered_flat_map.
  std::size_t operator()(const KeyView& key) const {
    const auto view = [&key](std::size_t i) { return absl::string_view(key[i].data(), key[i].size()); };
    return absl::HashOf(view(0), view(1), view(2), view(3));
  }
};

/// How many lines a file of `ConfigFile` has, judged by its length and that of its second line.
std::size_t ExpectedLines(std::string_view file);

/// Calls `insert(key, value)`, which must take views into `file`, for every record of it. Lines with missing,
/// empty or surplus parts are skipped.
template <class Insert>
void ForEachRecord(std::string_view file, Insert insert) {
  constexpr std::size_t kMostParts = 5;
  const auto split = [](std::string_view text, char separator, auto& parts) {
    std::size_t count = 0;
    bool ok = true;
    by_hand::ForEachPiece(text, separator, [&](std::string_view part) {
      ok = !part.empty() && count < kMostParts;
      if (ok) {
        parts[count++] = part;
      }
      return ok;
    });
    return ok ? count : 0;
  };
  std::array<std::string_view, kMostParts> columns;
  std::array<std::string_view, kMostParts> key1s;
  std::array<std::string_view, kMostParts> key2s;
  by_hand::ForEachPiece(file, '\n', [&](std::string_view line) {
    if (line.empty() || line[0] == '#' || split(by_hand::Trim(line), '\t', columns) != columns.size()) {
      return true;
    }
    const std::size_t count1 = split(columns[0], '/', key1s);
    const std::size_t count2 = split(columns[1], '/', key2s);
    for (std::size_t i = 0; i < count1; ++i) {
      for (std::size_t j = 0; j < count2; ++j) {
        insert(KeyView{key1s[i], key2s[j], columns[2], columns[3]}, columns[4]);
      }
    }
    return true;
  });
}

/// Answers a question with a table of texts: `find(key)` returns the value's text, or an empty view.
template <class Find>
std::int64_t AskText(const Question& question, Find find) {
  std::array<char, 12> digits;
  const std::to_chars_result end =
      std::to_chars(digits.data(), digits.data() + digits.size(), question.number);
  const std::string_view text =
      find(KeyView{question.key1, question.key2, question.key3, by_hand::View(digits.data(), end.ptr)});
  return by_hand::Str2Num(text).second;
}

/// A hash map of views into the mapped file, with space for its lines reserved.
template <class Map>
class ViewTable {
 public:
  explicit ViewTable(const std::string& path) : file_(path) {
    map_.reserve(ExpectedLines(file_.text()));
    ForEachRecord(file_.text(), [this](const KeyView& key, std::string_view value) { map_[key] = value; });
  }
  [[nodiscard]] std::int64_t Ask(const Question& question) const {
    return AskText(question, [this](const KeyView& key) {
      const auto entry = map_.find(key);
      return entry == map_.end() ? std::string_view() : entry->second;
    });
  }

 private:
  MappedFile file_;
  Map map_;
};

using AbseilTable = ViewTable<absl::flat_hash_map<KeyView, std::string_view, KeyHash>>;
using BoostTable = ViewTable<boost::unordered_flat_map<KeyView, std::string_view, KeyHash>>;

/// Registers its thread with liburcu.
class RcuThread {
 public:
  RcuThread() { rcu_register_thread(); }
  ~RcuThread() { rcu_unregister_thread(); }
  RcuThread(const RcuThread&) = delete;
  RcuThread& operator=(const RcuThread&) = delete;
};

/// A new hash map for each load, published by an atomic pointer; liburcu reports when the old one is unused.
class SwappedTable {
 public:
  explicit SwappedTable(const std::string& path) : current_(new AbseilTable(path)) {}
  ~SwappedTable() { delete current_.load(); }
  SwappedTable(const SwappedTable&) = delete;
  SwappedTable& operator=(const SwappedTable&) = delete;
  void Load(const std::string& path) {
    const AbseilTable* const old = current_.exchange(new AbseilTable(path));
    synchronize_rcu();
    delete old;
  }
  [[nodiscard]] std::int64_t Ask(const Question& question) const {
    rcu_read_lock();
    const std::int64_t value = current_.load(std::memory_order_acquire)->Ask(question);
    rcu_read_unlock();
    return value;
  }

 private:
  std::atomic<const AbseilTable*> current_;
};

/// liburcu's resizable lock-free hash table, with a bucket for each expected line. Files stay mapped, because
/// nodes hold views.
class RcuTable {
 public:
  explicit RcuTable(const std::string& path);
  ~RcuTable();
  RcuTable(const RcuTable&) = delete;
  RcuTable& operator=(const RcuTable&) = delete;
  void Load(const std::string& path);
  [[nodiscard]] std::int64_t Ask(const Question& question) const;

 private:
  void InsertNewestFile();

  std::vector<std::unique_ptr<MappedFile>> files_;
  cds_lfht* table_;
};

/// A table that is loaded when it is first asked for. Copies share it.
template <class Table>
class Lazy {
 public:
  explicit Lazy(std::function<std::unique_ptr<Table>()> make) : state_(std::make_shared<State>()) {
    state_->make = std::move(make);
  }
  Table& operator*() const {
    if (state_->table == nullptr) {
      state_->table = state_->make();
    }
    return *state_->table;
  }

 private:
  struct State {
    std::function<std::unique_ptr<Table>()> make;
    std::unique_ptr<Table> table;
  };
  std::shared_ptr<State> state_;
};

template <class Table>
Lazy<Table> LazyRival(const ConfigOf& config) {
  return Lazy<Table>([config] { return std::make_unique<Table>(config.Path()); });
}

inline Lazy<OurTable> LazyOurs(const Bundle& bundle, const ConfigOf& config) {
  return Lazy<OurTable>([&bundle, config] {
    auto table = std::make_unique<OurTable>(bundle);
    table->Load(config.Path());
    return table;
  });
}

}  // namespace bench

#endif  // BENCH_TABLES_H_
