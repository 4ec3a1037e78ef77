// Allocation in the arena of the alarm table. The arena owns its chunks; they are freed with it.
// Only the writer's thread calls these operations (see almarena.h).

#include "src/alarmconfig/almarena.h"

namespace NS_ASCII {

AlarmArena::Ref AlarmArena::Allocate(std::size_t bytes) {
  // The numbers of all units fit into 32 bits; those of one more chunk would not.
  static_assert(FirstOf(kChunks) <= std::uint64_t{1} << 32 && FirstOf(kChunks + 1) > std::uint64_t{1} << 32);
  const std::uint64_t units = bytes / kUnitBytes + (bytes % kUnitBytes != 0 ? 1 : 0);
  std::uint64_t first = next_;
  unsigned chunk = ChunkOf(static_cast<Ref>(first));
  // A piece lies in one chunk; the rest of a chunk that is too small for it stays unused.
  while (chunk < kChunks && first + units > FirstOf(chunk + 1)) {
    first = FirstOf(++chunk);
  }
  if (chunk == kChunks) {
    throw std::bad_alloc();
  }
  if (chunks_[chunk] == nullptr) {
    // Not cleared, so that pages that are never written never become resident.
    chunks_[chunk].reset(new char[BytesOf(UnitsOf(chunk))]);
  }
  next_ = first + units;
  return static_cast<Ref>(first);
}

std::size_t AlarmArena::ReservedBytes() const {
  std::size_t bytes = 0;
  for (unsigned chunk = 0; chunk < kChunks; ++chunk) {
    bytes += chunks_[chunk] == nullptr ? 0 : BytesOf(UnitsOf(chunk));
  }
  return bytes;
}

}  // namespace NS_ASCII
