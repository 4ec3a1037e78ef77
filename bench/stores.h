#ifndef BENCH_STORES_H_
#define BENCH_STORES_H_

#include <functional>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>

#include "bench/records.h"
#include "src/almtable.h"
#include "tests/literal_rules.h"

#if BENCH_WITH_ABSEIL
#include <absl/container/flat_hash_map.h>
#include <absl/strings/string_view.h>
#endif
#if BENCH_WITH_TBB
#include <tbb/concurrent_hash_map.h>
#endif

/// The alarm table and what one would store alarm records in instead, all with the same three operations:
///   void Insert(const AlarmConfigRecord&)                          adds it or replaces the value
///   bool Find(const AlarmConfigRecord& key, std::string& value)    copies the value out
///   std::size_t size()
namespace bench {

using NS_ASCII::AlarmConfigRecord;

class OurStore {
 public:
  void Insert(const AlarmConfigRecord& record) { table_.Insert(KeyOf(record), record.value); }
  bool Find(const AlarmConfigRecord& key, std::string& value) const { return table_.Find(KeyOf(key), value); }
  std::size_t size() const { return table_.size(); }

 private:
  static NS_ASCII::AlarmKey KeyOf(const AlarmConfigRecord& record) {
    return {record.key1, record.key2, record.key3, record.numKey};
  }
  NS_ASCII::AlarmTable table_;
};

/// Any map from records to strings.
template <class Map>
class MapStore {
 public:
  void Insert(const AlarmConfigRecord& record) { map_[record] = record.value; }
  bool Find(const AlarmConfigRecord& key, std::string& value) const {
    const auto entry = map_.find(key);
    if (entry == map_.end()) {
      return false;
    }
    value = entry->second;
    return true;
  }
  std::size_t size() const { return map_.size(); }

 private:
  Map map_;
};

/// The table as the literal version of the rules keeps it.
class LiteralStore {
 public:
  void Insert(const AlarmConfigRecord& record) {
    config_.InsertRecord({record.key1, record.key2, record.numKey, record.key3, record.value});
  }
  bool Find(const AlarmConfigRecord& key, std::string& value) const {
    return config_.GetValue({key.key1, key.key2, key.numKey, key.key3, {}}, value) == 0;
  }
  std::size_t size() const { return config_.valueMap.size(); }

 protected:
  literal::AlarmConfig config_;
};

struct GreaterRecord {
  bool operator()(const AlarmConfigRecord& a, const AlarmConfigRecord& b) const {
    return std::tie(a.key1, a.key2, a.key3, a.numKey) > std::tie(b.key1, b.key2, b.key3, b.numKey);
  }
};

struct SameRecord {
  using is_transparent = void;
  bool operator()(const KeyView& a, const KeyView& b) const { return a == b; }
};

struct StdHash {
  std::size_t operator()(const AlarmConfigRecord& record) const {
    std::size_t hash = 0;
    for (const std::string* text : {&record.key1, &record.key2, &record.key3, &record.numKey}) {
      hash = hash * 31 + std::hash<std::string_view>()(*text);
    }
    return hash;
  }
};

using StdMap = MapStore<std::map<AlarmConfigRecord, std::string, GreaterRecord>>;
using StdUnorderedMap = MapStore<std::unordered_map<AlarmConfigRecord, std::string, StdHash, SameRecord>>;

#if BENCH_WITH_ABSEIL
struct AbseilHash {
  using is_transparent = void;
  std::size_t operator()(const KeyView& key) const {
    return absl::HashOf(View(key.key1), View(key.key2), View(key.key3), View(key.numKey));
  }

 private:
  static absl::string_view View(std::string_view text) { return {text.data(), text.size()}; }
};

using AbseilMap = absl::flat_hash_map<AlarmConfigRecord, std::string, AbseilHash, SameRecord>;
using AbseilStore = MapStore<AbseilMap>;
#endif

/// A store behind a reader-writer lock, taken for each operation, so that it may be read during a load.
template <class Store>
class LockedStore {
 public:
  void Insert(const AlarmConfigRecord& record) {
    const std::unique_lock<std::shared_mutex> lock(mutex_);
    store_.Insert(record);
  }
  bool Find(const AlarmConfigRecord& key, std::string& value) const {
    const std::shared_lock<std::shared_mutex> lock(mutex_);
    return store_.Find(key, value);
  }
  std::size_t size() const { return store_.size(); }

 private:
  mutable std::shared_mutex mutex_;
  Store store_;
};

#if BENCH_WITH_TBB
class TbbStore {
 public:
  void Insert(const AlarmConfigRecord& record) {
    Map::accessor entry;
    map_.insert(entry, record);
    entry->second = record.value;
  }
  bool Find(const AlarmConfigRecord& key, std::string& value) const {
    Map::const_accessor entry;
    if (!map_.find(entry, key)) {
      return false;
    }
    value = entry->second;
    return true;
  }
  std::size_t size() const { return map_.size(); }

 private:
  struct HashCompare {
    std::size_t hash(const AlarmConfigRecord& record) const { return StdHash()(record); }
    bool equal(const AlarmConfigRecord& a, const AlarmConfigRecord& b) const { return SameRecord()(a, b); }
  };
  using Map = tbb::concurrent_hash_map<AlarmConfigRecord, std::string, HashCompare>;
  Map map_;
};
#endif

}  // namespace bench

#endif  // BENCH_STORES_H_
