// The answers of the table: distinct keys, values, order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "tests/alarmconfig/almtable/answers.h"
#include "tests/alarmconfig/equal_hashes.h"
#include "tests/literal_rules.h"
#include "tests/private_member.h"
#include "tests/random_text.h"

namespace private_member {
struct AddNode {
  friend constexpr auto Of(AddNode);
};
template struct Opened<AddNode, &NS_ASCII::AlarmTable::AddNode>;
}  // namespace private_member

namespace {

using almtable_test::AllOf;
using almtable_test::Answer;
using NS_ASCII::AlarmKey;
using NS_ASCII::AlarmTable;
using NS_ASCII::ComesBefore;
using ::testing::ElementsAre;

TEST(AlarmTable, FindsNothingWhenItIsEmpty) {
  const AlarmTable table;
  EXPECT_EQ(Answer(table, {"a", "b", "c", "1"}), "(none)");
  EXPECT_EQ(Answer(table, {}), "(none)");
  EXPECT_EQ(table.size(), 0U);
  EXPECT_THAT(AllOf(table), ElementsAre());
  EXPECT_EQ(table.ReservedBytes(), 0U);
}

TEST(AlarmTable, FindsAnEntryByAllFourFields) {
  AlarmTable table;
  table.Insert({"a", "b", "c", "1"}, "value");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "1"}), "value");
  EXPECT_EQ(Answer(table, {"x", "b", "c", "1"}), "(none)");
  EXPECT_EQ(Answer(table, {"a", "x", "c", "1"}), "(none)");
  EXPECT_EQ(Answer(table, {"a", "b", "x", "1"}), "(none)");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "x"}), "(none)");
  EXPECT_EQ(table.size(), 1U);
}

TEST(AlarmTable, DistinguishesFieldsWhoseTextsRunTogether) {
  AlarmTable table;
  table.Insert({"ab", "c", "d", "1"}, "first");
  EXPECT_EQ(Answer(table, {"a", "bc", "d", "1"}), "(none)");
  EXPECT_EQ(Answer(table, {"ab", "", "cd", "1"}), "(none)");
  table.Insert({"a", "bc", "d", "1"}, "second");
  EXPECT_EQ(Answer(table, {"ab", "c", "d", "1"}), "first");
  EXPECT_EQ(Answer(table, {"a", "bc", "d", "1"}), "second");
}

// Each field is compared in full.
TEST(AlarmTable, DistinguishesKeysOfOneHash) {
  const EqualHashes equalHashes;
  AlarmTable table;
  const std::vector<AlarmKey> keys = {
      {"ab", "cd", "ef", "12"}, {"aX", "cd", "ef", "12"}, {"Xb", "cd", "ef", "12"}, {"ab", "cX", "ef", "12"},
      {"ab", "Xd", "ef", "12"}, {"ab", "cd", "eX", "12"}, {"ab", "cd", "Xf", "12"}, {"ab", "cd", "ef", "1X"},
      {"ab", "cd", "ef", "X2"}, {"ab", "cd", "ef", "1"},  {"ab", "cd", "e", "f1"},  {"a", "bc", "de", "f1"},
      {"abc", "d", "ef", "12"}, {"ab", "cde", "f", "12"}, {"ab", "cd", "ef1", "2"}, {"ab", "cd", "ef12", ""}};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(Answer(table, keys[i]), "(none)") << i;
    table.Insert(keys[i], std::to_string(i));
  }
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(Answer(table, keys[i]), std::to_string(i));
  }
}

TEST(AlarmTable, AnswersTheSameForEveryHashKey) {
  std::vector<std::string> all;
  for (int i = 0; i < 3; ++i) {
    AlarmTable table;
    for (int entry = 0; entry < 500; ++entry) {
      const std::string number = std::to_string(entry);
      table.Insert({"ALARM" + number, "b", "c", number}, number);
    }
    EXPECT_EQ(all.empty() ? AllOf(table) : all, AllOf(table));
    all = AllOf(table);
  }
}

// The field has a length of 4 GiB but no memory. It is passed to the step after the hash, so no code reads
// its bytes.
TEST(AlarmTable, RefusesAFieldOf4GiBAndAnswersAsBefore) {
  AlarmTable table;
  table.Insert({"a", "b", "c", "1"}, "value");
  const std::size_t reserved = table.ReservedBytes();
  const std::string_view tooLong("", std::size_t{1} << 32);
  const auto addNode = Of(private_member::AddNode());
  for (const AlarmKey& key : {AlarmKey{tooLong, "", "", ""}, AlarmKey{"", tooLong, "", ""},
                              AlarmKey{"", "", tooLong, ""}, AlarmKey{"", "", "", tooLong}}) {
    EXPECT_THROW((table.*addNode)(key, 1), std::bad_alloc);
  }
  EXPECT_EQ(table.size(), 1U);
  EXPECT_EQ(table.ReservedBytes(), reserved);
  EXPECT_THAT(AllOf(table), ElementsAre("a/b/c/1=value"));
}

TEST(AlarmTable, ComparesBytesCaseAndBlanksIncluded) {
  AlarmTable table;
  table.Insert({"A", "b", "c", "7"}, "1");
  EXPECT_EQ(Answer(table, {"A ", "b", "c", "7"}), "(none)");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "7"}), "(none)");
  EXPECT_EQ(Answer(table, {"A", "b", "c", "07"}), "(none)");
  EXPECT_EQ(Answer(table, {std::string_view("A\0", 2), "b", "c", "7"}), "(none)");
}

TEST(AlarmTable, GivesAnEqualKeyItsLastValue) {
  AlarmTable table;
  table.Insert({"a", "b", "c", "1"}, "old");
  table.Insert({"a", "b", "c", "1"}, "a much longer new value");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "1"}), "a much longer new value");
  table.Insert({"a", "b", "c", "1"}, "");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "1"}), "");
  table.Insert({"a", "b", "c", "1"}, "old");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "1"}), "old");
  EXPECT_EQ(table.size(), 1U);
}

TEST(AlarmTable, KeepsEmptyFieldsAndEmbeddedNuls) {
  AlarmTable table;
  table.Insert({}, "nothing");
  table.Insert({std::string_view("a\0b", 3), "", "", ""}, std::string_view("v\0w", 3));
  EXPECT_EQ(Answer(table, {}), "nothing");
  EXPECT_EQ(Answer(table, {std::string_view("a\0b", 3), "", "", ""}), std::string("v\0w", 3));
  EXPECT_EQ(Answer(table, {"a", "", "", ""}), "(none)");
}

TEST(AlarmTable, CopiesItsTexts) {
  AlarmTable table;
  std::string key = "key";
  std::string value = "value";
  table.Insert({key, key, key, key}, value);
  key = "xxx";
  value = "xxxxx";
  EXPECT_EQ(Answer(table, {"key", "key", "key", "key"}), "value");
}

TEST(AlarmTable, OrdersByKey1Key2Key3NumKeyTheGreaterFirst) {
  EXPECT_TRUE(ComesBefore({"b", "", "", ""}, {"a", "z", "z", "z"}));
  EXPECT_TRUE(ComesBefore({"a", "b", "", ""}, {"a", "a", "z", "z"}));
  EXPECT_TRUE(ComesBefore({"a", "a", "b", ""}, {"a", "a", "a", "z"}));
  EXPECT_TRUE(ComesBefore({"a", "a", "a", "b"}, {"a", "a", "a", "a"}));
  EXPECT_FALSE(ComesBefore({"a", "a", "a", "a"}, {"a", "a", "a", "a"}));
  EXPECT_TRUE(ComesBefore({"ab", "", "", ""}, {"a", "", "", ""}));
  EXPECT_TRUE(ComesBefore({"\xFF", "", "", ""}, {"a", "", "", ""}));
}

TEST(AlarmTable, VisitsEntriesInDescendingOrder) {
  AlarmTable table;
  table.Insert({"a", "b", "c", "1"}, "v1");
  table.Insert({"a", "b", "d", "1"}, "v2");
  table.Insert({"B", "b", "c", "1"}, "v3");
  table.Insert({"\xE9", "b", "c", "1"}, "v4");
  table.Insert({"a", "b", "c", "2"}, "v5");
  table.Insert({"aa", "", "c", "2"}, "v6");
  table.Insert({"a", "c", "a", "0"}, "v7");
  EXPECT_THAT(AllOf(table), ElementsAre("\xE9/b/c/1=v4", "aa//c/2=v6", "a/c/a/0=v7", "a/b/d/1=v2",
                                        "a/b/c/2=v5", "a/b/c/1=v1", "B/b/c/1=v3"));
}

TEST(AlarmTable, InsertsSeveralKeysAtOnceAsOneByOne) {
  AlarmTable table;
  table.Insert({"a", "b", "c", "17"}, "old");
  std::vector<std::string> numbers;
  for (int i = 0; i < 1000; ++i) {
    numbers.push_back(std::to_string(i));
  }
  std::vector<AlarmKey> keys;
  for (const std::string& number : numbers) {
    keys.push_back({"a", "b", "c", number});
  }
  keys.push_back(keys.front());
  table.InsertAll(keys, "new");  // The table grows several times meanwhile.
  EXPECT_EQ(table.size(), 1000U);
  for (const AlarmKey& key : keys) {
    EXPECT_EQ(Answer(table, key), "new") << key.numKey;
  }
  table.InsertAll(std::vector<AlarmKey>{{"a", "b", "c", "17"}, {"x", "", "", ""}}, "newest");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "16"}), "new");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "17"}), "newest");
  EXPECT_EQ(Answer(table, {"x", "", "", ""}), "newest");
  table.InsertAll(std::vector<AlarmKey>(), "unused");
  EXPECT_EQ(table.size(), 1001U);
}

TEST(AlarmTable, AgreesWithTheLiteralStore) {
  AlarmTable table;
  literal::AlarmConfig store;
  testing_text::RandomText random(53);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const auto field = [&random] { return random.Of({"ab\0\xFF", 4}, 2); };
    const literal::Record record{field(), field(), field(), field(), random.Of("01", 3)};
    const AlarmKey key{record.key1, record.key2, record.key3, record.numKey};
    std::string expected = "(none)";
    store.GetValue(record, expected);
    ASSERT_EQ(Answer(table, key), expected);
    if (random.Below(2) == 0) {
      store.InsertRecord(record);
      table.Insert(key, record.value);
    }
  }
  ASSERT_EQ(table.size(), store.valueMap.size());
  std::vector<std::string> expected;
  for (const auto& [key, value] : store.valueMap) {
    expected.push_back(key.key1 + '/' + key.key2 + '/' + key.key3 + '/' + key.numKey + '=' + value);
  }
  EXPECT_EQ(AllOf(table), expected);
}

}  // namespace
