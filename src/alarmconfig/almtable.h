#ifndef SRC_ALMTABLE_H_
#define SRC_ALMTABLE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "src/almarena.h"
#include "src/almtextpool.h"

namespace NS_ASCII {

/// The four fields that make two alarm records the same entry, in the order in which records are compared.
/// It looks at texts that somebody else keeps.
struct AlarmKey {
  std::string_view key1;
  std::string_view key2;
  std::string_view key3;
  std::string_view numKey;
};

/// Whether `a` stands before `b` in the table's order: by key1, key2, key3, numKey, bytes compared as
/// unsigned, the *greater* one first.
bool ComesBefore(const AlarmKey& a, const AlarmKey& b);

/// The alarm configuration: an insert-only hash table that is read while it is being written to.
///
/// Invariants
///  1. A node is written completely before a slot that names it is published, with release; readers load
///     slots with acquire. After that only its value number changes.
///  2. A node never moves and is never freed before the table.
///  3. Growth fills a larger slot array beside the old one and publishes it with one store. Old arrays stay
///     until the table goes, so a reader that holds one finishes on it; entries that are added after the
///     growth it misses.
///  4. A new value for an entry is a new number in its node, published by one atomic store. The number
///     names an immutable text of the value pool, where equal texts are stored once: loading the same values
///     again, in whatever turn, takes no memory.
///  5. There is always a free slot, so every probe ends.
///
/// Threads: one writer at a time calls `Insert`, `InsertAll` and `ReservedBytes`; any number of readers call
/// `Find`, `ForEach` and `size` at the same time. They take no lock and never wait. For each key a reader
/// sees no value, an older one or the newest, never part of one; what was inserted before the reader began is
/// seen. `ForEach` visits what was there when it began, and may see some of what is inserted meanwhile.
class AlarmTable {
 public:
  AlarmTable() = default;
  ~AlarmTable();
  AlarmTable(const AlarmTable&) = delete;
  AlarmTable& operator=(const AlarmTable&) = delete;

  /// Adds the entry, or gives an entry with an equal key the new value. Copies the texts. Throws
  /// `std::bad_alloc` when memory runs out or a text is of 4 GiB or more; the table then answers as before.
  void Insert(const AlarmKey& key, std::string_view value);

  /// The same for each of `keys` in turn, a container of `AlarmKey` or what derives from it; when memory runs
  /// out, the first of them may be in. Faster in a table that is larger than the caches: the slots of all
  /// keys are fetched at once, and the value is stored once.
  template <class Keys>
  void InsertAll(const Keys& keys, std::string_view value) {
    hashes_.clear();
    for (const AlarmKey& key : keys) {
      hashes_.push_back(HashAndFetch(key));
    }
    const Ref valueRef = values_.Intern(value);
    auto hash = hashes_.cbegin();
    for (const AlarmKey& key : keys) {
      Put(key, *hash++, valueRef);
    }
  }

  /// Copies the entry's value to `value` and returns true; returns false and leaves `value` alone when there
  /// is no such entry.
  bool Find(const AlarmKey& key, std::string& value) const;

  [[nodiscard]] std::size_t size() const { return size_.load(std::memory_order_relaxed); }

  /// Visits every entry in the table's order. The texts stay valid as long as the table.
  void ForEach(const std::function<void(const AlarmKey&, std::string_view value)>& visit) const;

  /// Bytes asked of the system for entries, values and slots so far, for reports.
  [[nodiscard]] std::size_t ReservedBytes() const;

 private:
  using Ref = AlarmArena::Ref;

  /// The head of an entry's piece in the arena; the four key texts follow it, without gaps.
  struct Node {
    std::atomic<Ref> value;
    std::uint32_t lengths[4];
  };

  /// A slot holds a node's number in its lower bits and as much of its key's hash as has room in the upper
  /// ones; 0 when it is free. So an array takes half of what it would with whole hashes, and more of it stays
  /// in the caches.
  struct SlotArray {
    SlotArray(std::size_t count, std::unique_ptr<SlotArray> previous);

    [[nodiscard]] std::uint32_t WordOf(std::uint32_t hash, Ref ref) const { return (hash & ~refMask) | ref; }
    [[nodiscard]] Ref RefIn(std::uint32_t word) const { return word & refMask; }
    /// Whether the part of a hash that `word` holds is that of `hash`.
    [[nodiscard]] bool MayBe(std::uint32_t word, std::uint32_t hash) const {
      return ((word ^ hash) & ~refMask) == 0;
    }

    std::size_t mask;
    Ref refMask;  ///< also the largest number that a slot can hold
    std::unique_ptr<std::atomic<std::uint32_t>[]> slots;
    std::unique_ptr<SlotArray> older;
  };

  [[nodiscard]] const Node& NodeAt(Ref ref) const;
  [[nodiscard]] bool HasKey(Ref ref, const AlarmKey& key) const;
  [[nodiscard]] AlarmKey KeyOf(Ref ref) const;

  /// The number of the key's node, 0 if there is none; `slot` (out) is where it is or belongs.
  Ref Locate(const SlotArray& array, const AlarmKey& key, std::uint32_t hash, std::size_t& slot) const;

  /// The key's hash. Has the cache fetch the slot that a search for it starts with.
  [[nodiscard]] std::uint32_t HashAndFetch(const AlarmKey& key) const;

  /// The array in force as the writer sees it, which is the only one to store it.
  [[nodiscard]] SlotArray* Newest() const { return array_.load(std::memory_order_relaxed); }

  /// `Insert` of a key whose hash is known and a value that the pool has.
  void Put(const AlarmKey& key, std::uint32_t hash, Ref value);

  /// Writes a node that nobody sees yet.
  Ref AddNode(const AlarmKey& key, Ref value);
  void Grow();

  // The writer's alone.
  AlarmArena nodes_;
  AlarmTextPool values_;
  std::vector<std::uint32_t> hashes_;  // Of the keys that are inserted together.
  // The whole hash of each filled slot of the array in force. Hashing the keys anew whenever the array grows
  // would make a load twice as long.
  std::vector<std::uint32_t> slotHashes_;

  // Read by everybody. Owned: the array in force, which owns the older ones.
  std::atomic<SlotArray*> array_{nullptr};
  std::atomic<std::size_t> size_{0};
};

}  // namespace NS_ASCII

#endif  // SRC_ALMTABLE_H_
