// One writer, many readers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/alarmconfig/almtable/answers.h"
#include "tests/handover.h"
#include "tests/random_text.h"

namespace {

using almtable_test::AllOf;
using almtable_test::Answer;
using NS_ASCII::AlarmKey;
using NS_ASCII::AlarmTable;

/// Runs `read` in a loop on several threads while `write` runs on the calling thread.
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
        const std::optional<std::string_view> found = table.Find({"alarm", std::to_string(i), "column", "7"});
        if ((i < before && !found) || (found && *found != valueOf(i)) || table.size() < before) {
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
  // A value repeats its number, so that the test detects a mixture of two values.
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
          const std::string value = Answer(table, {"alarm", key, "c", "1"});
          const int round = std::atoi(value.c_str());
          if (round < last || value != valueOf(round)) {
            ++wrong;
          }
          last = std::max(last, round);
        }
      });
  EXPECT_EQ(wrong.load(), 0);
}

// Each step publishes something else: the slots, an entry, more slots, a value.
TEST(AlarmTableUnderReaders, ShowsWholeEntriesToAThreadWithoutSynchronisation) {
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
