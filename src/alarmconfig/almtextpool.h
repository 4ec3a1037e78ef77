#ifndef SRC_ALARMCONFIG_ALMTEXTPOOL_H_
#define SRC_ALARMCONFIG_ALMTEXTPOOL_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "src/alarmconfig/almarena.h"
#include "src/alarmconfig/almhash.h"

namespace NS_ASCII {

/// A set of texts that never shrinks, used for the third columns and for the configured values. Adding a text
/// again takes no memory.
///
/// Texts are byte strings of less than 4 GiB, embedded NULs included.
/// Threads: one writer calls `Intern`. Any thread may call `Text` for a number that it received through a
/// release/acquire pair from the writer; texts never move or change. All other operations are for the writer.
class AlarmTextPool {
 public:
  using Ref = AlarmArena::Ref;

  /// The number of `text`, which is added if it is missing. Never 0. Throws `std::bad_alloc`, the pool
  /// unchanged, when memory runs out or the text is too long.
  Ref Intern(std::string_view text);

  /// The text of a number that `Intern` returned. Valid as long as the pool.
  [[nodiscard]] std::string_view Text(Ref ref) const {
    const char* const piece = arena_.At(ref);
    std::uint32_t length;
    std::memcpy(&length, piece, sizeof length);
    return {piece + sizeof length, length};
  }

  [[nodiscard]] bool Contains(std::string_view text) const;
  [[nodiscard]] std::size_t size() const { return size_; }

  /// Bytes allocated; for tests and measurements.
  [[nodiscard]] std::size_t ReservedBytes() const;

 private:
  struct Slot {
    std::uint32_t hash;
    Ref ref;  // 0 when the slot is free
  };

  /// The slot that holds `text`, or the free one to use for it. There must be a free slot.
  [[nodiscard]] std::size_t SlotOf(std::string_view text, std::uint32_t hash) const;
  void Grow();

  const HashKey hashKey_ = RandomHashKey();
  AlarmArena arena_;
  std::vector<Slot> slots_;  // Open addressing with linear probing; size a power of two.
  std::size_t size_ = 0;
};

}  // namespace NS_ASCII

#endif  // SRC_ALARMCONFIG_ALMTEXTPOOL_H_
