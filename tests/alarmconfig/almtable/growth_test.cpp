// The growth of the table, and its memory.

#include <gtest/gtest.h>

#include <string>

#include "tests/alarmconfig/almtable/answers.h"

namespace {

using almtable_test::AllOf;
using almtable_test::Answer;
using NS_ASCII::AlarmTable;

TEST(AlarmTable, FindsEveryEntryWhileItGrows) {
  AlarmTable table;
  for (int i = 0; i < 5000; ++i) {
    const std::string number = std::to_string(i);
    table.Insert({"alarm", number, "c", "1"}, number);
    ASSERT_EQ(table.size(), static_cast<std::size_t>(i) + 1);
    ASSERT_EQ(Answer(table, {"alarm", number, "c", "1"}), number);
    const std::string earlier = std::to_string(i / 2);
    ASSERT_EQ(Answer(table, {"alarm", earlier, "c", "1"}), earlier);
    ASSERT_EQ(Answer(table, {"alarm", "absent", "c", "1"}), "(none)");
  }
  EXPECT_EQ(AllOf(table).size(), 5000U);
}

TEST(AlarmTable, TakesNoMemoryForValuesItHasSeenBefore) {
  AlarmTable table;
  const auto load = [&table](const std::string& suffix) {
    for (int i = 0; i < 1000; ++i) {
      const std::string number = std::to_string(i);
      table.Insert({"alarm", number, "c", "1"}, number + suffix);
    }
  };
  load("");
  load("-other");
  const std::size_t reserved = table.ReservedBytes();
  for (int turn = 0; turn < 20; ++turn) {
    load("");
    load("-other");
  }
  EXPECT_EQ(table.ReservedBytes(), reserved);
  EXPECT_EQ(table.size(), 1000U);
}

// A slot has few bits for a node's number, and the number counts the units of all earlier nodes.
TEST(AlarmTable, GrowsEarlierForLongEntries) {
  AlarmTable table;
  for (int i = 0; i < 40; ++i) {
    table.Insert({std::to_string(i), std::string(50000, 'x'), "c", "1"}, std::to_string(i));
    for (int earlier = 0; earlier <= i; ++earlier) {
      ASSERT_EQ(Answer(table, {std::to_string(earlier), std::string(50000, 'x'), "c", "1"}),
                std::to_string(earlier));
    }
    ASSERT_EQ(Answer(table, {std::to_string(i + 1), std::string(50000, 'x'), "c", "1"}), "(none)");
  }
  EXPECT_EQ(table.size(), 40U);
  EXPECT_EQ(AllOf(table).size(), 40U);
  // Node numbers reach 532,697, which 32,768 slots can hold.
  constexpr std::size_t kSlotArrays = (64 + 128 + 256 + 512 + 1024 + 2048 + 4096 + 8192 + 16384 + 32768) * 4;
  constexpr std::size_t kNodes = 63 * 65536;
  EXPECT_EQ(table.ReservedBytes(), kSlotArrays + 32768 * 4 + kNodes + 16384 + 64 * 8);
}

// The first chunk has 16,384 bytes, of which four are never used.
TEST(AlarmTable, TakesTwentyBytesForAnEntryBesideItsTexts) {
  AlarmTable table;
  int entries = 0;
  const auto insert = [&] { table.Insert({std::to_string(1000 + entries++), "", "", ""}, ""); };
  while (entries < (16384 - 4) / (20 + 4)) {
    insert();
  }
  const std::size_t reserved = table.ReservedBytes();
  insert();
  EXPECT_EQ(table.ReservedBytes(), reserved + 32768);
}

TEST(AlarmTable, ReportsTheMemoryOfOldSlotArraysToo) {
  AlarmTable table;
  table.Insert({"0", "", "", ""}, "");
  const std::size_t first = table.ReservedBytes();
  // Slots with their hashes, entries, values and the values' own slots.
  EXPECT_EQ(first, 64U * 8 + 16384 + 16384 + 16 * 8);
  for (int i = 1; i < 48; ++i) {
    table.Insert({std::to_string(i), "", "", ""}, "");
  }
  EXPECT_EQ(table.ReservedBytes(), first);
  table.Insert({"48", "", "", ""}, "");  // The 49th entry no longer fits three quarters of 64 slots.
  EXPECT_EQ(table.ReservedBytes(), first + 128 * 8 - 64 * 4);  // Hashes are kept for the current array only.
}

}  // namespace
