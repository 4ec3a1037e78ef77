// Texts stored once: equal texts share a number, also when all hashes are equal, and no text ever moves,
// because readers keep views of it.

#include "src/alarmconfig/almtextpool.h"

#include <gtest/gtest.h>

#include <map>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "tests/alarmconfig/equal_hashes.h"
#include "tests/random_text.h"

namespace {

using NS_ASCII::AlarmTextPool;

TEST(AlarmTextPool, IsEmptyAtFirst) {
  const AlarmTextPool pool;
  EXPECT_EQ(pool.size(), 0U);
  EXPECT_FALSE(pool.Contains(""));
  EXPECT_FALSE(pool.Contains("a"));
  EXPECT_EQ(pool.ReservedBytes(), 0U);
}

TEST(AlarmTextPool, KeepsEachTextOnce) {
  AlarmTextPool pool;
  const auto a = pool.Intern("a");
  const auto b = pool.Intern("b");
  EXPECT_NE(a, 0U);
  EXPECT_NE(a, b);
  EXPECT_EQ(pool.Intern("a"), a);
  EXPECT_EQ(pool.Intern("b"), b);
  EXPECT_EQ(pool.size(), 2U);
  EXPECT_EQ(pool.Text(a), "a");
  EXPECT_EQ(pool.Text(b), "b");
}

TEST(AlarmTextPool, DistinguishesTextsByteByByte) {
  AlarmTextPool pool;
  const std::vector<std::string> texts = {
      "",    "a", "A", "a ", "ab", " a", std::string(1, '\0'), std::string("a\0b", 3), std::string("a\0c", 3),
      "\xFF"};
  std::set<AlarmTextPool::Ref> refs;
  for (const std::string& text : texts) {
    EXPECT_FALSE(pool.Contains(text));
    refs.insert(pool.Intern(text));
    EXPECT_TRUE(pool.Contains(text));
  }
  EXPECT_EQ(refs.size(), texts.size());
  EXPECT_EQ(refs.count(0), 0U);
  EXPECT_EQ(pool.size(), texts.size());
  EXPECT_FALSE(pool.Contains("b"));
}

TEST(AlarmTextPool, TakesNoMemoryForATextItHas) {
  AlarmTextPool pool;
  const std::string text(1000, 'x');
  pool.Intern(text);
  const std::size_t reserved = pool.ReservedBytes();
  for (int i = 0; i < 10000; ++i) {
    pool.Intern(text);
  }
  EXPECT_EQ(pool.ReservedBytes(), reserved);
}

TEST(AlarmTextPool, ReportsItsTextsAndItsSlots) {
  AlarmTextPool pool;
  pool.Intern("a");
  EXPECT_EQ(pool.ReservedBytes(), 16384U + 16 * 8);
  for (const char* const text : {"b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"}) {
    pool.Intern(text);
  }
  EXPECT_EQ(pool.ReservedBytes(), 16384U + 16 * 8);  // Three quarters of the slots are used.
  pool.Intern("a");
  EXPECT_EQ(pool.ReservedBytes(), 16384U + 16 * 8);  // A stored text takes no more memory.
  pool.Intern("m");
  EXPECT_EQ(pool.ReservedBytes(), 16384U + 32 * 8);
}

TEST(AlarmTextPool, DistinguishesTextsOfOneHash) {
  const EqualHashes equalHashes;
  AlarmTextPool pool;
  std::map<std::string, AlarmTextPool::Ref> known;
  for (const char* const text : {"text", "texX", "Xext", "tex", "texts", ""}) {
    EXPECT_FALSE(pool.Contains(text)) << text;
    known[text] = pool.Intern(text);
  }
  for (const auto& [text, ref] : known) {
    EXPECT_EQ(pool.Text(ref), text);
    EXPECT_EQ(pool.Intern(text), ref);
  }
}

// The text has a length of 4 GiB but no memory; the pool must refuse it without reading it.
TEST(AlarmTextPool, RefusesATextOf4GiBAndIsThenUnchanged) {
  AlarmTextPool pool;
  const auto ref = pool.Intern("a");
  const std::size_t reserved = pool.ReservedBytes();
  EXPECT_THROW(pool.Intern({"", std::size_t{1} << 32}), std::bad_alloc);
  EXPECT_EQ(pool.size(), 1U);
  EXPECT_EQ(pool.ReservedBytes(), reserved);
  EXPECT_EQ(pool.Text(ref), "a");
}

TEST(AlarmTextPool, CopiesTheText) {
  AlarmTextPool pool;
  std::string text = "before";
  const auto ref = pool.Intern(text);
  text = "changed";
  EXPECT_EQ(pool.Text(ref), "before");
}

TEST(AlarmTextPool, NeverMovesATextWhileItGrows) {
  AlarmTextPool pool;
  std::map<std::string, std::pair<AlarmTextPool::Ref, const char*>> known;
  for (int i = 0; i < 20000; ++i) {
    const std::string text = "text " + std::to_string(i);
    const auto ref = pool.Intern(text);
    known[text] = {ref, pool.Text(ref).data()};
  }
  EXPECT_EQ(pool.size(), 20000U);
  for (const auto& [text, where] : known) {
    ASSERT_EQ(pool.Intern(text), where.first);
    ASSERT_EQ(pool.Text(where.first), text);
    ASSERT_EQ(pool.Text(where.first).data(), where.second);
  }
  EXPECT_FALSE(pool.Contains("text 20000"));
}

TEST(AlarmTextPool, GrowsBeforeItIsFull) {
  AlarmTextPool pool;
  for (int i = 0; i < 3000; ++i) {
    pool.Intern(std::to_string(i));
    ASSERT_FALSE(pool.Contains("absent"));  // Would never end without a free slot.
  }
  // Slots of eight bytes, at least a quarter of them free, and at most doubled.
  EXPECT_GE(pool.ReservedBytes(), 3000U * 4 / 3 * 8);
}

TEST(AlarmTextPool, AgreesWithASet) {
  AlarmTextPool pool;
  std::set<std::string> set;
  testing_text::RandomText random(52);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const std::string text = trial % 3 == 0 ? random.Bytes(20) : random.Of({"ab\0", 3}, 9);
    ASSERT_EQ(pool.Contains(text), set.count(text) == 1);
    ASSERT_EQ(pool.Text(pool.Intern(text)), text);
    set.insert(text);
    ASSERT_EQ(pool.size(), set.size());
  }
}

}  // namespace
