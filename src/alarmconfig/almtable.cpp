// The hash table of the alarm configuration. The table owns its nodes and all slot arrays; they are freed
// with it. One thread inserts while any number of threads search; almtable.h has the invariants.

#include "src/alarmconfig/almtable.h"

#include <algorithm>
#include <limits>
#include <new>
#include <tuple>
#include <vector>

namespace NS_ASCII {
namespace {

constexpr std::size_t kFirstSlots = 64;

/// The largest node number that fits a slot of an array with `count` slots. It leaves 128 bytes of node
/// memory for each slot; if the nodes need more, the array grows before three quarters of it are used.
constexpr AlarmArena::Ref LargestRef(std::size_t count) {
  constexpr std::uint64_t kUnitsPerSlot = 128 / AlarmArena::kUnitBytes;
  constexpr std::uint64_t kMost = std::numeric_limits<AlarmArena::Ref>::max();
  return static_cast<AlarmArena::Ref>(std::min(kUnitsPerSlot * count - 1, kMost));
}
static_assert(LargestRef(kFirstSlots) == 2047);
static_assert(LargestRef(std::size_t{1} << 26) == 0x7FFFFFFF);
static_assert(LargestRef(std::size_t{1} << 28) == 0xFFFFFFFF);

auto FieldsOf(const AlarmKey& key) { return std::tie(key.key1, key.key2, key.key3, key.numKey); }

/// The text's length as stored in a node.
std::uint32_t LengthOf(std::string_view text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::bad_alloc();
  }
  return static_cast<std::uint32_t>(text.size());
}

}  // namespace

bool ComesBefore(const AlarmKey& a, const AlarmKey& b) { return FieldsOf(a) > FieldsOf(b); }

AlarmTable::SlotArray::SlotArray(std::size_t count)
    : mask(count - 1),
      refMask(LargestRef(count)),
      slots(std::make_unique<std::atomic<std::uint32_t>[]>(count)) {}

AlarmTable::~AlarmTable() { delete CurrentArray(); }

void AlarmTable::Insert(const AlarmKey& key, std::string_view value) {
  InsertInterned(key, values_.Intern(value));
}

std::uint32_t AlarmTable::HashOf(const AlarmKey& key) const {
  return TextHash(hashKey_).Add(key.key1).Add(key.key2).Add(key.key3).Add(key.numKey).Value();
}

void AlarmTable::InsertInterned(const AlarmKey& key, Ref value) {
  const std::uint32_t hash = HashOf(key);
  const SlotArray* const array = CurrentArray();
  std::size_t slot = 0;
  if (array != nullptr) {
    if (const Ref ref = Locate(*array, key, hash, slot); ref != 0) {
      // Only the value number of a published node may change. Equal numbers are equal texts.
      auto& current = const_cast<std::atomic<Ref>&>(NodeAt(ref).value);
      if (current.load(std::memory_order_relaxed) != value) {
        // Release: the text is complete before its number is seen.
        current.store(value, std::memory_order_release);
      }
      return;
    }
  }
  if (array == nullptr || 4 * (size() + 1) > 3 * (array->mask + 1)) {
    Grow();
  }
  const Ref ref = AddNode(key, value);
  while (ref > CurrentArray()->refMask) {
    Grow();
  }
  SlotArray& current = *CurrentArray();
  if (&current != array) {
    Locate(current, key, hash, slot);
  }
  slotHashes_[slot] = hash;
  // Release: a reader that loads this slot sees the complete node.
  current.slots[slot].store(current.PackSlot(hash, ref), std::memory_order_release);
  size_.store(size() + 1, std::memory_order_relaxed);
}

std::optional<std::string_view> AlarmTable::Find(const AlarmKey& key) const {
  const SlotArray* const array = array_.load(std::memory_order_acquire);
  if (array == nullptr) {
    return std::nullopt;
  }
  std::size_t slot;
  const Ref ref = Locate(*array, key, HashOf(key), slot);
  if (ref == 0) {
    return std::nullopt;
  }
  // Acquire: pairs with the release in InsertInterned, so that the new value's text is complete.
  return values_.Text(NodeAt(ref).value.load(std::memory_order_acquire));
}

void AlarmTable::ForEach(const std::function<void(const AlarmKey&, std::string_view)>& visit) const {
  const SlotArray* const array = array_.load(std::memory_order_acquire);
  if (array == nullptr) {
    return;
  }
  std::vector<Ref> refs;
  for (std::size_t i = 0; i <= array->mask; ++i) {
    if (const Ref ref = array->RefIn(array->slots[i].load(std::memory_order_acquire)); ref != 0) {
      refs.push_back(ref);
    }
  }
  std::sort(refs.begin(), refs.end(), [this](Ref a, Ref b) { return ComesBefore(KeyOf(a), KeyOf(b)); });
  for (const Ref ref : refs) {
    visit(KeyOf(ref), values_.Text(NodeAt(ref).value.load(std::memory_order_acquire)));
  }
}

std::size_t AlarmTable::ReservedBytes() const {
  std::size_t bytes =
      nodes_.ReservedBytes() + values_.ReservedBytes() + slotHashes_.size() * sizeof slotHashes_[0];
  for (const SlotArray* array = CurrentArray(); array != nullptr; array = array->older.get()) {
    bytes += (array->mask + 1) * sizeof array->slots[0];
  }
  return bytes;
}

const AlarmTable::Node& AlarmTable::NodeAt(Ref ref) const {
  return *std::launder(reinterpret_cast<const Node*>(nodes_.At(ref)));
}

AlarmKey AlarmTable::KeyOf(Ref ref) const {
  const Node& node = NodeAt(ref);
  const char* text = reinterpret_cast<const char*>(&node + 1);
  const auto next = [&text](std::uint32_t length) {
    const std::string_view part(text, length);
    text += length;
    return part;
  };
  // Braces evaluate from left to right.
  return AlarmKey{next(node.lengths[0]), next(node.lengths[1]), next(node.lengths[2]), next(node.lengths[3])};
}

bool AlarmTable::HasKey(Ref ref, const AlarmKey& key) const { return FieldsOf(KeyOf(ref)) == FieldsOf(key); }

AlarmTable::Ref AlarmTable::Locate(const SlotArray& array, const AlarmKey& key, std::uint32_t hash,
                                   std::size_t& slot) const {
  for (slot = hash & array.mask;; slot = (slot + 1) & array.mask) {
    // Acquire: pairs with the release in InsertInterned, so that the node is complete.
    const std::uint32_t word = array.slots[slot].load(std::memory_order_acquire);
    if (word == 0) {
      return 0;
    }
    if (array.HashBitsMatch(word, hash) && HasKey(array.RefIn(word), key)) {
      return array.RefIn(word);
    }
  }
}

AlarmTable::Ref AlarmTable::AddNode(const AlarmKey& key, Ref value) {
  const std::uint32_t lengths[] = {LengthOf(key.key1), LengthOf(key.key2), LengthOf(key.key3),
                                   LengthOf(key.numKey)};
  const std::size_t textBytes = std::size_t{lengths[0]} + lengths[1] + lengths[2] + lengths[3];
  const Ref ref = nodes_.Allocate(sizeof(Node) + textBytes);
  char* const piece = nodes_.At(ref);
  Node* const node = new (piece) Node{{value}, {lengths[0], lengths[1], lengths[2], lengths[3]}};
  char* text = reinterpret_cast<char*>(node + 1);
  for (const std::string_view part : {key.key1, key.key2, key.key3, key.numKey}) {
    text += part.copy(text, part.size());
  }
  return ref;
}

void AlarmTable::Grow() {
  SlotArray* const old = CurrentArray();
  const std::size_t count = old == nullptr ? kFirstSlots : 2 * (old->mask + 1);
  auto larger = std::make_unique<SlotArray>(count);
  std::vector<std::uint32_t> hashes(count);
  for (std::size_t i = 0; old != nullptr && i <= old->mask; ++i) {
    // Relaxed throughout: only this thread changes the old array, and the new one is not published yet.
    const std::uint32_t word = old->slots[i].load(std::memory_order_relaxed);
    if (word == 0) {
      continue;
    }
    const std::uint32_t hash = slotHashes_[i];
    std::size_t slot = hash & larger->mask;
    while (larger->slots[slot].load(std::memory_order_relaxed) != 0) {
      slot = (slot + 1) & larger->mask;
    }
    larger->slots[slot].store(larger->PackSlot(hash, old->RefIn(word)), std::memory_order_relaxed);
    hashes[slot] = hash;
  }
  slotHashes_.swap(hashes);
  larger->older.reset(old);
  array_.store(larger.release(), std::memory_order_release);
}

}  // namespace NS_ASCII
