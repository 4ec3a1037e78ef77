#include "src/largepages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <vector>

#include "src/almarena.h"
#include "src/almtable.h"

namespace {

struct Advice {
  std::uintptr_t start;
  std::size_t bytes;
  int what;
};

std::vector<Advice> given;
bool refused = false;

}  // namespace

// The linker sends the unit's advice to the system here (--wrap).
extern "C" int __wrap_madvise(void* start, std::size_t bytes, int what) {
  given.push_back({reinterpret_cast<std::uintptr_t>(start), bytes, what});
  errno = EINVAL;
  return refused ? -1 : 0;
}

namespace {

constexpr std::size_t kLargePage = 2097152;

/// The advice for a block that starts there; its memory is never touched.
std::optional<Advice> AdviceFor(std::uintptr_t start, std::size_t bytes) {
  given.clear();
  NS_ASCII::PreferLargePages(reinterpret_cast<void*>(start), bytes);
  EXPECT_LE(given.size(), 1U);
  return given.empty() ? std::nullopt : std::optional<Advice>(given.front());
}

class PreferLargePages : public testing::Test {
 protected:
  ~PreferLargePages() override { refused = false; }

  const std::uintptr_t page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::uintptr_t start = 1000 * kLargePage;
};

TEST_F(PreferLargePages, LeavesABlockAloneThatIsSmallerThanALargePage) {
  EXPECT_FALSE(AdviceFor(start, 0));
  EXPECT_FALSE(AdviceFor(start, kLargePage - 1));
}

TEST_F(PreferLargePages, AsksForAWholeBlock) {
  for (const std::size_t bytes : {kLargePage, kLargePage + 1, 7 * kLargePage}) {
    const auto advice = AdviceFor(start, bytes);
    ASSERT_TRUE(advice);
    EXPECT_EQ(advice->start, start);
    EXPECT_EQ(advice->bytes, bytes);
    EXPECT_EQ(advice->what, MADV_HUGEPAGE);
  }
}

TEST_F(PreferLargePages, LeavesTheFirstPageOutThatTheBlockSharesWithOthers) {
  for (const std::uintptr_t offset : {std::uintptr_t{1}, std::uintptr_t{16}, page - 1}) {
    const auto advice = AdviceFor(start + offset, 3 * kLargePage);
    ASSERT_TRUE(advice);
    EXPECT_EQ(advice->start, start + page);
    EXPECT_EQ(advice->start + advice->bytes, start + offset + 3 * kLargePage);
  }
  const auto next = AdviceFor(start + page, 3 * kLargePage);
  ASSERT_TRUE(next);
  EXPECT_EQ(next->start, start + page);
  EXPECT_EQ(next->bytes, 3 * kLargePage);
}

// The table's blocks: slots of four bytes, and chunks of the arena.
TEST_F(PreferLargePages, IsAskedForUnderEveryLargeBlockOfTheTable) {
  given.clear();
  const NS_ASCII::AlarmTable::SlotArray small(kLargePage / 8, nullptr);
  EXPECT_TRUE(given.empty());
  const NS_ASCII::AlarmTable::SlotArray large(kLargePage / 2, nullptr);
  ASSERT_EQ(given.size(), 1U);
  EXPECT_EQ(given[0].start + given[0].bytes,
            reinterpret_cast<std::uintptr_t>(large.slots.get()) + 2 * kLargePage);
  given.clear();
  NS_ASCII::AlarmArena arena;
  arena.Allocate(16384);
  EXPECT_TRUE(given.empty());
  const auto ref = arena.Allocate(3 * kLargePage);
  ASSERT_EQ(given.size(), 1U);
  EXPECT_EQ(given[0].start + given[0].bytes,
            reinterpret_cast<std::uintptr_t>(arena.At(ref)) + 4 * kLargePage);
}

TEST_F(PreferLargePages, TakesARefusalForAnAnswer) {
  refused = true;
  EXPECT_TRUE(AdviceFor(start, kLargePage));
}

}  // namespace
