#include "src/almtable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <new>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "src/almhash.h"
#include "tests/handover.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using NS_ASCII::AlarmKey;
using NS_ASCII::AlarmTable;
using NS_ASCII::ComesBefore;
using ::testing::ElementsAre;

/// What a lookup answers; "(none)" when it finds nothing.
std::string Answer(const AlarmTable& table, const AlarmKey& key) {
  std::string value = "untouched";
  if (!table.Find(key, value)) {
    EXPECT_EQ(value, "untouched");
    return "(none)";
  }
  return value;
}

std::vector<std::string> AllOf(const AlarmTable& table) {
  std::vector<std::string> all;
  table.ForEach([&all](const AlarmKey& key, std::string_view value) {
    all.push_back(std::string(key.key1) + '/' + std::string(key.key2) + '/' + std::string(key.key3) + '/' +
                  std::string(key.numKey) + '=' + std::string(value));
  });
  return all;
}

TEST(AlarmTable, AnswersNothingWhenItIsEmpty) {
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

TEST(AlarmTable, TellsFieldsApartWhereTheirTextsRunTogether) {
  AlarmTable table;
  table.Insert({"ab", "c", "d", "1"}, "first");
  EXPECT_EQ(Answer(table, {"a", "bc", "d", "1"}), "(none)");
  EXPECT_EQ(Answer(table, {"ab", "", "cd", "1"}), "(none)");
  table.Insert({"a", "bc", "d", "1"}, "second");
  EXPECT_EQ(Answer(table, {"ab", "c", "d", "1"}), "first");
  EXPECT_EQ(Answer(table, {"a", "bc", "d", "1"}), "second");
}

TEST(AlarmTable, TellsKeysOfOneHashApart) {
  std::unordered_map<std::uint32_t, std::string> byHash;
  int collisions = 0;
  for (int i = 0; i < 400000; ++i) {
    const std::string text = std::to_string(i);
    NS_ASCII::TextHash hash;
    for (const char* const field : {text.c_str(), "b", "c", "1"}) {
      hash.Add(field);
    }
    const auto [other, isNew] = byHash.emplace(hash.value(), text);
    if (isNew) {
      continue;
    }
    ++collisions;
    AlarmTable table;
    table.Insert({text, "b", "c", "1"}, "one");
    EXPECT_EQ(Answer(table, {other->second, "b", "c", "1"}), "(none)");
    table.Insert({other->second, "b", "c", "1"}, "two");
    EXPECT_EQ(Answer(table, {text, "b", "c", "1"}), "one");
    EXPECT_EQ(Answer(table, {other->second, "b", "c", "1"}), "two");
  }
  EXPECT_GT(collisions, 0);
}

// Looked for by the hash of the stored key, as if two such keys had the same one.
TEST(AlarmTable, TellsFieldsApartWhereTheirTextsAndHashesAreTheSame) {
  AlarmTable table;
  table.Insert({"ab", "c", "d", "1"}, "value");
  NS_ASCII::TextHash hash;
  for (const char* const field : {"ab", "c", "d", "1"}) {
    hash.Add(field);
  }
  std::size_t slot = 0;
  EXPECT_NE(table.Locate(*table.array_, {"ab", "c", "d", "1"}, hash.value(), slot), 0U);
  EXPECT_EQ(table.Locate(*table.array_, {"a", "bc", "d", "1"}, hash.value(), slot), 0U);
  EXPECT_EQ(table.Locate(*table.array_, {"ab", "cd", "", "1"}, hash.value(), slot), 0U);
  EXPECT_EQ(table.Locate(*table.array_, {"ab", "c", "d1", ""}, hash.value(), slot), 0U);
  EXPECT_EQ(table.Locate(*table.array_, {"a", "b", "c", "d"}, hash.value(), slot), 0U);
  EXPECT_EQ(table.Locate(*table.array_, {"ab", "c", "d", ""}, hash.value(), slot), 0U);
}

// Only its length says that the field is too long. It is handed to the step behind the hash, so nobody reads
// it.
TEST(AlarmTable, RefusesAFieldOf4GiBAndAnswersAsBefore) {
  AlarmTable table;
  table.Insert({"a", "b", "c", "1"}, "value");
  const std::size_t reserved = table.ReservedBytes();
  const std::string_view tooLong("", std::size_t{1} << 32);
  const NS_ASCII::AlarmArena::Ref value = table.values_.Intern("new");
  for (const AlarmKey& key : {AlarmKey{tooLong, "", "", ""}, AlarmKey{"", tooLong, "", ""},
                              AlarmKey{"", "", tooLong, ""}, AlarmKey{"", "", "", tooLong}}) {
    EXPECT_THROW(table.AddNode(key, value), std::bad_alloc);
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
  table.InsertAll(keys, "new");  // The table grows several times on the way.
  EXPECT_EQ(table.size(), 1000U);
  for (const AlarmKey& key : keys) {
    EXPECT_EQ(Answer(table, key), "new") << key.numKey;
  }
  table.InsertAll(std::vector<AlarmKey>{{"a", "b", "c", "17"}, {"x", "", "", ""}}, "newest");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "16"}), "new");
  EXPECT_EQ(Answer(table, {"a", "b", "c", "17"}), "newest");
  EXPECT_EQ(Answer(table, {"x", "", "", ""}), "newest");
  table.InsertAll(std::vector<AlarmKey>(), "nobody's");
  EXPECT_EQ(table.size(), 1001U);
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

// A slot has only so many bits for an entry's number, which counts what all entries before take.
TEST(AlarmTable, GrowsEarlierForLongEntries) {
  AlarmTable table;
  for (int i = 0; i < 40; ++i) {
    table.Insert({std::to_string(i), std::string(50000, 'x'), "c", "1"}, std::to_string(i));
    const AlarmTable::SlotArray& array = *table.array_.load();
    ASSERT_GE(array.refMask, static_cast<std::size_t>(i) * 50000 / 4);
    ASSERT_LT(array.mask, 65536U);
    for (int earlier = 0; earlier <= i; ++earlier) {
      ASSERT_EQ(Answer(table, {std::to_string(earlier), std::string(50000, 'x'), "c", "1"}),
                std::to_string(earlier));
    }
    ASSERT_EQ(Answer(table, {std::to_string(i + 1), std::string(50000, 'x'), "c", "1"}), "(none)");
  }
  EXPECT_EQ(table.size(), 40U);
  EXPECT_EQ(AllOf(table).size(), 40U);
}

TEST(AlarmTable, TakesTwentyBytesForAnEntryBesideItsTexts) { EXPECT_EQ(sizeof(AlarmTable::Node), 20U); }

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
  EXPECT_EQ(table.ReservedBytes(), first + 128 * 8 - 64 * 4);  // Hashes are kept for the slots in force only.
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

// --- One writer, many readers

/// Runs `read` again and again on several threads while `write` runs on this one.
template <class Write, class Read>
void WhileWriting(Write write, Read read) {
  std::atomic<bool> done{false};
  std::vector<std::thread> readers;
  for (unsigned seed = 0; seed < 3; ++seed) {
    readers.emplace_back([&done, &read, seed] {
      testing_text::RandomText random(seed);
      do {
        read(random);
      } while (!done.load(std::memory_order_acquire));
    });
  }
  write();
  done.store(true, std::memory_order_release);
  for (std::thread& reader : readers) {
    reader.join();
  }
}

TEST(AlarmTableUnderReaders, ShowsWhatWasInsertedBeforeAndNeverAPartOfIt) {
  constexpr int kEntries = 4000;
  AlarmTable table;
  std::atomic<int> inserted{0};
  std::atomic<int> wrong{0};
  const auto valueOf = [](std::size_t i) {
    const std::size_t pair = i / 2;
    return std::string(1 + pair % 40, static_cast<char>('a' + pair % 26));
  };
  WhileWriting(
      [&] {
        for (int i = 0; i < kEntries; i += 2) {
          const std::array numbers{std::to_string(i), std::to_string(i + 1)};
          const AlarmKey first{"alarm", numbers[0], "column", "7"};
          const AlarmKey second{"alarm", numbers[1], "column", "7"};
          const std::string value = valueOf(static_cast<std::size_t>(i));
          if (i % 4 == 0) {
            table.Insert(first, value);
            table.Insert(second, value);
          } else {
            table.InsertAll(std::array{first, second}, value);
          }
          inserted.store(i + 2, std::memory_order_release);
        }
      },
      [&](testing_text::RandomText& random) {
        const auto before = static_cast<std::size_t>(inserted.load(std::memory_order_acquire));
        const std::size_t i = random.Below(kEntries);
        std::string value;
        const bool found = table.Find({"alarm", std::to_string(i), "column", "7"}, value);
        if ((i < before && !found) || (found && value != valueOf(i)) || table.size() < before) {
          ++wrong;
        }
      });
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(table.size(), static_cast<std::size_t>(kEntries));
}

TEST(AlarmTableUnderReaders, AnswersAnOlderValueOrTheNewestAndNeverGoesBack) {
  constexpr int kKeys = 16;
  constexpr int kRounds = 600;
  AlarmTable table;
  std::atomic<int> wrong{0};
  std::atomic<int> finished{0};
  // A value repeats its number, so that a mixture of two would show.
  const auto valueOf = [](int round) {
    const std::string number = std::to_string(round);
    return number + ':' + number + ':' + number;
  };
  const auto insertAll = [&](int round) {
    for (int key = 0; key < kKeys; ++key) {
      table.Insert({"alarm", std::to_string(key), "c", "1"}, valueOf(round));
    }
    finished.store(round, std::memory_order_release);
  };
  insertAll(0);
  WhileWriting(
      [&] {
        for (int round = 1; round <= kRounds; ++round) {
          insertAll(round);
          table.Insert({"other", std::to_string(round), "c", "1"}, "grows the table");
        }
      },
      [&](testing_text::RandomText& random) {
        const std::string key = std::to_string(random.Below(kKeys));
        int last = finished.load(std::memory_order_acquire);
        for (int i = 0; i < 10; ++i) {
          std::string value;
          const bool found = table.Find({"alarm", key, "c", "1"}, value);
          const int round = found ? std::atoi(value.c_str()) : -1;
          if (round < last || value != valueOf(round)) {
            ++wrong;
          }
          last = std::max(last, round);
        }
      });
  EXPECT_EQ(wrong.load(), 0);
}

// Each step publishes in another way: the slots, an entry, more slots, a value.
TEST(AlarmTableUnderReaders, ShowsWhatIsInsertedWholeToAThreadThatIsToldNothing) {
  AlarmTable found;
  AlarmTable visited;
  struct Step {
    std::size_t count;
    std::string value;
  };
  for (const Step& step :
       {Step{1, "v"}, Step{2, "v"}, Step{100, "v"}, Step{100, "a value never seen before"}}) {
    const auto insertInto = [&step](AlarmTable& table) {
      for (std::size_t i = 0; i < step.count; ++i) {
        table.Insert({"alarm", std::to_string(i), "c", "1"}, step.value);
      }
    };
    HandOver([&] { insertInto(found); },
             [&] {
               const std::string last = std::to_string(step.count - 1);
               EXPECT_EQ(Answer(found, {"alarm", last, "c", "1"}), step.value);
             });
    HandOver([&] { insertInto(visited); },
             [&] { EXPECT_THAT(AllOf(visited), ::testing::SizeIs(step.count)); });
    HandOver(
        [&] {
          visited.Insert({"alarm", "0", "c", "1"}, step.value + " again");
        },
        [&] { EXPECT_EQ(AllOf(visited).back(), "alarm/0/c/1=" + step.value + " again"); });
  }
}

TEST(AlarmTableUnderReaders, VisitsOnlyWholeEntriesInOrder) {
  AlarmTable table;
  std::atomic<int> wrong{0};
  WhileWriting(
      [&] {
        for (int i = 0; i < 400; ++i) {
          const std::string number = std::to_string(i % 200);
          table.Insert({number, number, number, number}, number + (i < 200 ? "-old" : "-new"));
        }
      },
      [&](testing_text::RandomText&) {
        std::string last;
        table.ForEach([&](const AlarmKey& key, std::string_view value) {
          const std::string name(key.key1);
          const bool whole = key.key2 == name && key.key3 == name && key.numKey == name &&
                             (value == name + "-old" || value == name + "-new");
          if (!whole || (!last.empty() && name >= last)) {
            ++wrong;
          }
          last = name;
        });
      });
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(table.size(), 200U);
}

}  // namespace
