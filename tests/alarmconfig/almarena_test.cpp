// The table's memory: numbering, alignment, doubling chunks. Limits of 4 GiB and more are reached by
// setting a private counter, not by allocating.

#include "src/alarmconfig/almarena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <vector>

#include "tests/private_member.h"
#include "tests/random_text.h"

namespace private_member {
struct NextUnit {
  friend constexpr auto Of(NextUnit);
};
template struct Opened<NextUnit, &NS_ASCII::AlarmArena::next_>;

struct BytesOf32Bits {
  friend constexpr auto Of(BytesOf32Bits);
};
template struct Opened<BytesOf32Bits, &NS_ASCII::AlarmArena::BytesOf<std::uint32_t>>;
}  // namespace private_member

namespace {

using NS_ASCII::AlarmArena;

constexpr std::size_t kFirstChunkBytes = 16384;

TEST(AlarmArena, HoldsNothingAtFirst) { EXPECT_EQ(AlarmArena().ReservedBytes(), 0U); }

TEST(AlarmArena, NeverGivesOutZero) {
  AlarmArena arena;
  EXPECT_EQ(arena.Allocate(0), 1U);
  EXPECT_EQ(arena.Allocate(1), 1U);  // The previous piece was empty.
}

TEST(AlarmArena, NumbersPiecesByUnitsOfFourBytes) {
  AlarmArena arena;
  EXPECT_EQ(arena.Allocate(1), 1U);
  EXPECT_EQ(arena.Allocate(4), 2U);
  EXPECT_EQ(arena.Allocate(5), 3U);
  EXPECT_EQ(arena.Allocate(8), 5U);
  EXPECT_EQ(arena.Allocate(1), 7U);
  EXPECT_EQ(arena.At(2) - arena.At(1), 4);
  EXPECT_EQ(arena.At(7) - arena.At(1), 24);
}

TEST(AlarmArena, AlignsEveryPieceToFour) {
  AlarmArena arena;
  for (std::size_t bytes = 1; bytes < 200; ++bytes) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(arena.At(arena.Allocate(bytes))) % 4, 0U);
  }
}

TEST(AlarmArena, ReservesChunksThatDouble) {
  AlarmArena arena;
  EXPECT_EQ(arena.Allocate(kFirstChunkBytes - 4), 1U);  // All of the first chunk except unit 0.
  EXPECT_EQ(arena.ReservedBytes(), kFirstChunkBytes);
  EXPECT_EQ(arena.Allocate(1), 4096U);
  EXPECT_EQ(arena.ReservedBytes(), 3 * kFirstChunkBytes);
  EXPECT_EQ(arena.Allocate(2 * kFirstChunkBytes - 4), 4097U);
  EXPECT_EQ(arena.ReservedBytes(), 3 * kFirstChunkBytes);
  EXPECT_EQ(arena.Allocate(1), 3U * 4096U);
  EXPECT_EQ(arena.ReservedBytes(), 7 * kFirstChunkBytes);
}

// With 32-bit sizes the size of a 4 GiB chunk would otherwise wrap to 0.
TEST(AlarmArena, RefusesAChunkWhoseSizeDoesNotFit) {
  constexpr auto kBytesOf = Of(private_member::BytesOf32Bits());
  EXPECT_EQ(kBytesOf(0x3FFFFFFF), 0xFFFFFFFCU);
  EXPECT_THROW(kBytesOf(0x40000000), std::bad_alloc);
}

TEST(AlarmArena, KeepsAPieceInOneChunk) {
  AlarmArena arena;
  EXPECT_EQ(arena.Allocate(kFirstChunkBytes - 8), 1U);  // One unit is left.
  EXPECT_EQ(arena.Allocate(8), 4096U);
  EXPECT_EQ(arena.Allocate(4), 4098U);  // The last unit of the first chunk stays unused.
}

TEST(AlarmArena, SkipsChunksThatAreTooSmallWithoutReservingThem) {
  AlarmArena arena;
  EXPECT_EQ(arena.Allocate(4 * kFirstChunkBytes), 3U * 4096U);
  EXPECT_EQ(arena.ReservedBytes(), 4 * kFirstChunkBytes);
  EXPECT_EQ(arena.Allocate(4), 7U * 4096U);
}

TEST(AlarmArena, ThrowsWhenAPieceFitsNoChunkAndIsThenUnchanged) {
  AlarmArena arena;
  EXPECT_EQ(arena.Allocate(4), 1U);
  EXPECT_THROW(arena.Allocate(std::size_t{9} << 30), std::bad_alloc);
  EXPECT_THROW(arena.Allocate(SIZE_MAX), std::bad_alloc);
  EXPECT_EQ(arena.ReservedBytes(), kFirstChunkBytes);
  EXPECT_EQ(arena.Allocate(4), 2U);
}

// Filling the arena would take 16 GiB, so the test sets the next free unit itself.
TEST(AlarmArena, ThrowsWhenItsNumbersHaveRunOut) {
  constexpr std::uint64_t kEnd = (std::uint64_t{1} << 32) - 4096;
  AlarmArena arena;
  std::uint64_t& next = arena.*Of(private_member::NextUnit());
  next = kEnd;
  EXPECT_THROW(arena.Allocate(1), std::bad_alloc);
  next = kEnd - 1;
  EXPECT_THROW(arena.Allocate(5), std::bad_alloc);
  EXPECT_EQ(next, kEnd - 1);
  EXPECT_EQ(arena.ReservedBytes(), 0U);
}

TEST(AlarmArena, KeepsWhatIsWrittenInPiecesOfAllSizes) {
  AlarmArena arena;
  testing_text::RandomText random(51);
  struct Piece {
    AlarmArena::Ref ref;
    std::string text;
    const char* place;
  };
  std::vector<Piece> pieces;
  for (int i = 0; i < testing_text::Trials(3000); ++i) {
    Piece piece{0, random.Bytes(i % 100 == 0 ? 30000 : 60), nullptr};
    piece.ref = arena.Allocate(piece.text.size());
    piece.place = arena.At(piece.ref);
    std::memcpy(arena.At(piece.ref), piece.text.data(), piece.text.size());
    pieces.push_back(piece);
  }
  for (const Piece& piece : pieces) {
    ASSERT_EQ(arena.At(piece.ref), piece.place);
    ASSERT_EQ(std::memcmp(piece.place, piece.text.data(), piece.text.size()), 0);
  }
}

}  // namespace
