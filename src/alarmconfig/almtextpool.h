#ifndef SRC_ALMTEXTPOOL_H_
#define SRC_ALMTEXTPOOL_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "src/almarena.h"

namespace NS_ASCII {

/// A set of texts, each kept once for good. Serves twice: as the set of all third columns, and as the home of
/// configured values, so that reloading values that were seen before takes no memory.
///
/// Texts are byte strings of less than 4 GiB; embedded NULs count.
/// Threads: one writer calls `Intern`. Any thread may call `Text` for a number that it received through a
/// release/acquire pair from the writer; texts never move or change. The rest is the writer's.
class AlarmTextPool {
 public:
  using Ref = AlarmArena::Ref;

  /// The number of `text`, which is added if it is not there yet. Never 0. Throws `std::bad_alloc` when
  /// memory runs out or the text is too long; the pool then holds what it held.
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

  /// Bytes asked of the system so far, for reports.
  [[nodiscard]] std::size_t ReservedBytes() const;

 private:
  struct Slot {
    std::uint32_t hash;
    Ref ref;  // 0 when the slot is free
  };

  /// The slot that holds `text`, or the free one where it belongs. There must be a free slot.
  [[nodiscard]] std::size_t SlotOf(std::string_view text, std::uint32_t hash) const;
  void Grow();

  AlarmArena arena_;
  std::vector<Slot> slots_;  // Open addressing with linear probing; size a power of two.
  std::size_t size_ = 0;
};

}  // namespace NS_ASCII

#endif  // SRC_ALMTEXTPOOL_H_
