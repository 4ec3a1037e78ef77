#ifndef TOOLS_ALMCFG_KEY_INDEX_H_
#define TOOLS_ALMCFG_KEY_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "src/almtable.h"

namespace almcfg {

/// Which line last set a key. It keeps eight bytes for each key and no text: whether a line really has the
/// key is asked of whoever has the lines, who must outlive it.
class KeyIndex {
 public:
  /// A line among all that were loaded; 0 is none.
  using LineId = std::uint32_t;
  using Holds = std::function<bool(LineId, const NS_ASCII::AlarmKey&)>;

  explicit KeyIndex(Holds holds) : holds_(std::move(holds)) {}

  /// Notes that `line` sets the key and returns the line that did so before, 0 for a new key.
  LineId Put(const NS_ASCII::AlarmKey& key, LineId line);

  /// The line that last set the key, 0 if none did.
  [[nodiscard]] LineId Find(const NS_ASCII::AlarmKey& key) const;

  [[nodiscard]] std::size_t size() const { return size_; }

 private:
  struct Slot {
    std::uint32_t hash;  ///< of the key
    LineId line;         ///< 0 when the slot is free
  };

  /// The slot that has the key, or the free one where it belongs. There must be a free slot.
  std::size_t SlotOf(const NS_ASCII::AlarmKey& key, std::uint32_t hash) const;
  void Grow();

  Holds holds_;
  std::vector<Slot> slots_;  // Open addressing with linear probing; size a power of two.
  std::size_t size_ = 0;
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_KEY_INDEX_H_
