#ifndef SRC_ALMARENA_H_
#define SRC_ALMARENA_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace NS_ASCII {

/// Memory for immutable pieces of the alarm table: handed out once, never moved, freed all at once.
///
/// A piece is named by a 32-bit number instead of a pointer, which halves the size of whatever refers to it.
/// Numbers count units of four bytes, so an arena holds up to 16 GiB. Chunks double in size, so that the
/// chunk of a number follows from its highest bits and a million pieces need a dozen allocations.
///
/// Threads: one writer calls `Allocate`. Any thread may call `At` for a piece whose number it received
/// through a release/acquire pair from the writer: the chunk is in place before its first number is given
/// out, and is not touched again.
class AlarmArena {
 public:
  /// The number of a piece; 0 is no piece.
  using Ref = std::uint32_t;

  static constexpr std::size_t kUnitBytes = 4;

  AlarmArena() = default;
  AlarmArena(const AlarmArena&) = delete;
  AlarmArena& operator=(const AlarmArena&) = delete;

  /// A new piece of at least `bytes` bytes, aligned to four, contents undefined. Throws `std::bad_alloc` when
  /// memory or numbers run out; the arena is then unchanged.
  Ref Allocate(std::size_t bytes);

  /// The start of the piece. `ref` must have come from `Allocate` of this arena.
  [[nodiscard]] char* At(Ref ref) const {
    const unsigned chunk = ChunkOf(ref);
    return chunks_[chunk].get() + (ref - FirstOf(chunk)) * kUnitBytes;
  }

  /// Bytes asked of the system so far, for reports.
  [[nodiscard]] std::size_t ReservedBytes() const;

 private:
  static constexpr unsigned kFirstChunkBits = 12;  // 4,096 units, 16 KiB
  static constexpr unsigned kChunks = 32 - kFirstChunkBits;

  static constexpr std::uint64_t UnitsOf(unsigned chunk) {
    return std::uint64_t{1} << (kFirstChunkBits + chunk);
  }
  /// Chunk k starts behind the 2^k - 1 first-chunk sizes of all smaller ones.
  static constexpr std::uint64_t FirstOf(unsigned chunk) {
    return ((std::uint64_t{1} << chunk) - 1) << kFirstChunkBits;
  }
  static unsigned ChunkOf(Ref ref) {
    return 31U - static_cast<unsigned>(__builtin_clz((ref >> kFirstChunkBits) + 1));
  }

  std::array<std::unique_ptr<char[]>, kChunks> chunks_;
  std::uint64_t next_ = 1;  // The next free unit; unit 0 is given to nobody.
};

}  // namespace NS_ASCII

#endif  // SRC_ALMARENA_H_
