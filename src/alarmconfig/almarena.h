#ifndef SRC_ALARMCONFIG_ALMARENA_H_
#define SRC_ALARMCONFIG_ALMARENA_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace NS_ASCII {

/// Allocates pieces of memory for the nodes and texts of the alarm table. A piece never moves; all are freed
/// together.
///
/// A piece is identified by a 32-bit number instead of a pointer, which halves the size of references to it.
/// Numbers count units of four bytes, so an arena holds up to 16 GiB. Chunks double in size, so the chunk of
/// a number follows from its highest bits, and a million pieces need a dozen allocations.
///
/// Threads: one writer calls `Allocate`. Any thread may call `At` for a piece whose number it received
/// through a release/acquire pair from the writer: a chunk is allocated before its first number is returned,
/// and its pointer never changes.
class AlarmArena {
 public:
  /// The number of a piece; 0 means none.
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

  /// Bytes allocated; for tests and measurements.
  [[nodiscard]] std::size_t ReservedBytes() const;

 private:
  static constexpr unsigned kFirstChunkBits = 12;  // 4,096 units, 16 KiB
  static constexpr unsigned kChunks = 32 - kFirstChunkBits;

  static constexpr std::uint64_t UnitsOf(unsigned chunk) {
    return std::uint64_t{1} << (kFirstChunkBits + chunk);
  }
  /// Throws `std::bad_alloc` when that many bytes do not fit into a `Size`.
  template <class Size = std::size_t>
  static constexpr Size BytesOf(std::uint64_t units) {
    if (units > std::numeric_limits<Size>::max() / kUnitBytes) {
      throw std::bad_alloc();
    }
    return static_cast<Size>(units * kUnitBytes);
  }
  /// The first unit of the chunk: the smaller chunks have (2^chunk - 1) times the units of chunk 0.
  static constexpr std::uint64_t FirstOf(unsigned chunk) {
    return ((std::uint64_t{1} << chunk) - 1) << kFirstChunkBits;
  }
  static unsigned ChunkOf(Ref ref) {
    return 31U - static_cast<unsigned>(__builtin_clz((ref >> kFirstChunkBits) + 1));
  }

  std::array<std::unique_ptr<char[]>, kChunks> chunks_;
  std::uint64_t next_ = 1;  // The next free unit; unit 0 is never used.
};

}  // namespace NS_ASCII

#endif  // SRC_ALARMCONFIG_ALMARENA_H_
