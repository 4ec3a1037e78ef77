#ifndef TESTS_CONTRACT_RAW_SLOTS_H_
#define TESTS_CONTRACT_RAW_SLOTS_H_

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

/// Virtual tables as other compilers' code uses them: numbered entries, reached through the first pointer of
/// an object (Itanium C++ ABI). Slots count from 1, the two destructor entries included.
namespace raw {

/// The entry of `slot` in the table that `object` points to.
inline const void* Entry(const void* object, std::size_t slot) {
  void* const* table;
  std::memcpy(&table, object, sizeof table);
  return table[slot - 1];
}

/// The same, callable. `Function` is a function type whose first parameter is the object.
template <class Function>
Function* At(const void* object, std::size_t slot) {
  const void* const entry = Entry(object, slot);
  Function* function;
  std::memcpy(&function, &entry, sizeof function);
  return function;
}

/// While it exists, `object` has a table of `kSlots` entries that only record their own number, except for
/// those that a test sets. The words before the entries (type information, offsets) stay, so checked casts
/// work.
template <std::size_t kSlots>
class ReplacedTable {
 public:
  explicit ReplacedTable(void* object) : object_(object) {
    called.clear();
    std::memcpy(&original_, object_, sizeof original_);
    std::memcpy(words_.data(), original_ - kHead, kHead * sizeof(void*));
    FillWithRecorders(std::make_index_sequence<kSlots>());
    void** const table = words_.data() + kHead;
    std::memcpy(object_, &table, sizeof table);
  }
  ~ReplacedTable() { std::memcpy(object_, &original_, sizeof original_); }
  ReplacedTable(const ReplacedTable&) = delete;
  ReplacedTable& operator=(const ReplacedTable&) = delete;

  template <class Function>
  void Set(std::size_t slot, Function* function) {
    std::memcpy(&words_[kHead + slot - 1], &function, sizeof function);
  }

  /// The slots that were called and are not set, in order.
  static inline std::vector<std::size_t> called;

 private:
  static constexpr std::size_t kHead = 2;  // Offset to top, type information.

  template <std::size_t kSlot>
  static void RecordCall() {
    called.push_back(kSlot);
  }

  template <std::size_t... kIndex>
  void FillWithRecorders(std::index_sequence<kIndex...> /*slots*/) {
    (Set(kIndex + 1, &RecordCall<kIndex + 1>), ...);
  }

  void* object_;
  void** original_;
  std::array<void*, kHead + kSlots> words_;
};

}  // namespace raw

#endif  // TESTS_CONTRACT_RAW_SLOTS_H_
