#ifndef SRC_ALARMCONFIG_ALMTABLE_H_
#define SRC_ALARMCONFIG_ALMTABLE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "src/alarmconfig/almarena.h"
#include "src/alarmconfig/almhash.h"
#include "src/alarmconfig/almrecord.h"
#include "src/alarmconfig/almtextpool.h"

namespace NS_ASCII {

/// Whether `a` precedes `b` in the table's order: by key1, key2, key3, numKey, bytes compared as unsigned.
/// Required: the order is descending.
bool ComesBefore(const AlarmKey& a, const AlarmKey& b);

/// The table of the alarm configuration: an insert-only hash table with lock-free readers.
///
/// Invariants
///  1. A node is written completely before a slot with its number is published, with release; readers load
///     slots with acquire. After that only its value number changes.
///  2. A node never moves and is freed only with the table.
///  3. Growth fills a second, larger slot array and publishes it with one store. Old arrays are kept until
///     the table is destroyed: a reader that holds one can finish, and misses only entries that were inserted
///     after it began.
///  4. A new value for an entry is a new number in its node, published by one atomic store. The number
///     identifies an immutable text of the value pool, which stores equal texts once: loading the same file
///     again takes no memory.
///  5. There is always a free slot, so every probe ends.
///  6. The hash key is random, so the author of a file cannot choose keys that collide. No result depends on
///     it.
///
/// Threads: one writer at a time calls `Insert`, `InsertAll` and `ReservedBytes`; any number of readers call
/// `Find`, `ForEach` and `size` at the same time, without locks and without waiting. A reader sees everything
/// that was inserted before it began; for a key that is being inserted it sees no value, an older one or the
/// newest. `ForEach` may also visit some of the entries that are inserted while it runs.
class AlarmTable {
 public:
  AlarmTable() = default;
  ~AlarmTable();
  AlarmTable(const AlarmTable&) = delete;
  AlarmTable& operator=(const AlarmTable&) = delete;

  /// Adds the entry, or gives an entry with an equal key the new value. Copies the texts. Throws
  /// `std::bad_alloc` when memory runs out or a text is of 4 GiB or more; the table then answers as before.
  void Insert(const AlarmKey& key, std::string_view value);

  /// Inserts each of `keys`, a container of `AlarmKey` or of a derived type, in order with the same value. On
  /// `std::bad_alloc` a prefix of `keys` may have been inserted. Faster than single insertions, because the
  /// value is looked up once.
  template <class Keys>
  void InsertAll(const Keys& keys, std::string_view value) {
    const Ref valueRef = values_.Intern(value);
    for (const AlarmKey& key : keys) {
      InsertInterned(key, valueRef);
    }
  }

  /// The entry's value, a text that stays valid as long as the table; nothing when there is no such entry.
  [[nodiscard]] std::optional<std::string_view> Find(const AlarmKey& key) const;

  [[nodiscard]] std::size_t size() const { return size_.load(std::memory_order_relaxed); }

  /// Visits every entry in the table's order. The texts stay valid as long as the table.
  void ForEach(const std::function<void(const AlarmKey&, std::string_view value)>& visit) const;

  /// Bytes allocated for entries, values and slots; for tests and measurements.
  [[nodiscard]] std::size_t ReservedBytes() const;

 private:
  using Ref = AlarmArena::Ref;

  /// The header of an entry in the arena; the four key texts follow it without gaps.
  struct Node {
    std::atomic<Ref> value;
    std::uint32_t lengths[4];
  };

  /// A slot holds a node's number in its lower bits and upper bits of its key's hash in the rest; 0 when it
  /// is free. Storing only part of the hash halves an array's memory, so more of it stays in the caches.
  struct SlotArray {
    explicit SlotArray(std::size_t count);

    [[nodiscard]] std::uint32_t PackSlot(std::uint32_t hash, Ref ref) const {
      return (hash & ~refMask) | ref;
    }
    [[nodiscard]] Ref RefIn(std::uint32_t word) const { return word & refMask; }
    /// Whether the hash bits in `word` are those of `hash`.
    [[nodiscard]] bool HashBitsMatch(std::uint32_t word, std::uint32_t hash) const {
      return ((word ^ hash) & ~refMask) == 0;
    }

    std::size_t mask;
    Ref refMask;  ///< also the largest node number that fits a slot
    std::unique_ptr<std::atomic<std::uint32_t>[]> slots;
    std::unique_ptr<SlotArray> older;
  };

  [[nodiscard]] const Node& NodeAt(Ref ref) const;
  [[nodiscard]] AlarmKey KeyOf(Ref ref) const;
  [[nodiscard]] bool HasKey(Ref ref, const AlarmKey& key) const;

  [[nodiscard]] std::uint32_t HashOf(const AlarmKey& key) const;

  /// The number of the key's node, 0 if there is none; `slot` (out) is its slot or the free one to use.
  Ref Locate(const SlotArray& array, const AlarmKey& key, std::uint32_t hash, std::size_t& slot) const;

  /// The current array, for the writer, which is the only thread that changes it.
  [[nodiscard]] SlotArray* CurrentArray() const { return array_.load(std::memory_order_relaxed); }

  /// Inserts a key with a value of the pool.
  void InsertInterned(const AlarmKey& key, Ref value);

  /// Writes a node that is not published yet.
  Ref AddNode(const AlarmKey& key, Ref value);
  void Grow();

  const HashKey hashKey_ = RandomHashKey();

  // Changed by the writer only. Readers use them through numbers that were published.
  AlarmArena nodes_;
  AlarmTextPool values_;

  // Used by the writer only: the whole hash of each used slot of the current array. Computing the hashes
  // again whenever the array grows would double the time of a load.
  std::vector<std::uint32_t> slotHashes_;

  // Read by all threads. Owned: the current array, which owns the older ones.
  std::atomic<SlotArray*> array_{nullptr};
  std::atomic<std::size_t> size_{0};
};

}  // namespace NS_ASCII

#endif  // SRC_ALARMCONFIG_ALMTABLE_H_
