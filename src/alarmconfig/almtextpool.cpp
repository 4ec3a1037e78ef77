// The pool of texts: an open-addressing hash set of pieces in an arena, which the pool owns.
// Only the writer's thread calls these operations (see almtextpool.h).

#include "src/alarmconfig/almtextpool.h"

#include <cstring>
#include <limits>
#include <new>

namespace NS_ASCII {
namespace {

constexpr std::size_t kFirstSlots = 16;

}  // namespace

AlarmTextPool::Ref AlarmTextPool::Intern(std::string_view text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::bad_alloc();
  }
  const std::uint32_t hash = TextHash(hashKey_).Add(text).Value();
  std::size_t slot = 0;
  if (!slots_.empty()) {
    slot = SlotOf(text, hash);
    if (slots_[slot].ref != 0) {
      return slots_[slot].ref;
    }
  }
  if (4 * (size_ + 1) > 3 * slots_.size()) {
    Grow();
    slot = SlotOf(text, hash);
  }
  // A piece is the text's length, then the text.
  const auto length = static_cast<std::uint32_t>(text.size());
  const Ref ref = arena_.Allocate(sizeof length + text.size());
  char* const piece = arena_.At(ref);
  std::memcpy(piece, &length, sizeof length);
  text.copy(piece + sizeof length, text.size());
  slots_[slot] = {hash, ref};
  ++size_;
  return ref;
}

bool AlarmTextPool::Contains(std::string_view text) const {
  return size_ != 0 && slots_[SlotOf(text, TextHash(hashKey_).Add(text).Value())].ref != 0;
}

std::size_t AlarmTextPool::ReservedBytes() const {
  return arena_.ReservedBytes() + slots_.capacity() * sizeof(Slot);
}

std::size_t AlarmTextPool::SlotOf(std::string_view text, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t i = hash & mask;
  while (slots_[i].ref != 0 && (slots_[i].hash != hash || Text(slots_[i].ref) != text)) {
    i = (i + 1) & mask;
  }
  return i;
}

void AlarmTextPool::Grow() {
  std::vector<Slot> larger(slots_.empty() ? kFirstSlots : 2 * slots_.size(), Slot{0, 0});
  const std::size_t mask = larger.size() - 1;
  for (const Slot& slot : slots_) {
    if (slot.ref == 0) {
      continue;
    }
    std::size_t i = slot.hash & mask;
    while (larger[i].ref != 0) {
      i = (i + 1) & mask;
    }
    larger[i] = slot;
  }
  slots_.swap(larger);
}

}  // namespace NS_ASCII
