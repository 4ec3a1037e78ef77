#include "tools/almcfg/key_index.h"

#include "src/almhash.h"

namespace almcfg {
namespace {

constexpr std::size_t kFirstSlots = 64;

std::uint32_t HashOf(const NS_ASCII::AlarmKey& key) {
  NS_ASCII::TextHash hash;
  hash.Add(key.key1);
  hash.Add(key.key2);
  hash.Add(key.key3);
  hash.Add(key.numKey);
  return hash.value();
}

}  // namespace

KeyIndex::LineId KeyIndex::Put(const NS_ASCII::AlarmKey& key, LineId line) {
  if (4 * (size_ + 1) > 3 * slots_.size()) {
    Grow();
  }
  const std::uint32_t hash = HashOf(key);
  Slot& slot = slots_[SlotOf(key, hash)];
  const LineId earlier = slot.line;
  if (earlier == 0) {
    ++size_;
  }
  slot = {hash, line};
  return earlier;
}

KeyIndex::LineId KeyIndex::Find(const NS_ASCII::AlarmKey& key) const {
  return slots_.empty() ? 0 : slots_[SlotOf(key, HashOf(key))].line;
}

std::size_t KeyIndex::SlotOf(const NS_ASCII::AlarmKey& key, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t i = hash & mask;
  while (slots_[i].line != 0 && (slots_[i].hash != hash || !holds_(slots_[i].line, key))) {
    i = (i + 1) & mask;
  }
  return i;
}

void KeyIndex::Grow() {
  std::vector<Slot> larger(slots_.empty() ? kFirstSlots : 2 * slots_.size(), Slot{0, 0});
  const std::size_t mask = larger.size() - 1;
  for (const Slot& slot : slots_) {
    if (slot.line == 0) {
      continue;
    }
    std::size_t i = slot.hash & mask;
    while (larger[i].line != 0) {
      i = (i + 1) & mask;
    }
    larger[i] = slot;
  }
  slots_.swap(larger);
}

}  // namespace almcfg
