// What a reader sees between any two instructions of the writer. The processor's single-step mode stops the
// writer after each instruction; the signal handler is the reader. Threads would hit such moments by chance.

#include <gtest/gtest.h>

#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__)

#include <csignal>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "src/alarmconfig/almtable.h"

namespace {

using NS_ASCII::AlarmKey;
using NS_ASCII::AlarmTable;

std::function<void()> read;
std::size_t steps = 0;

void OnStep(int /*signal*/) {
  ++steps;
  read();
}

void SetSingleStep(bool isOn) {
  constexpr unsigned long long kSingleStepFlag = 0x100;
  const unsigned long long flags = __builtin_ia32_readeflags_u64();
  __builtin_ia32_writeeflags_u64(isOn ? flags | kSingleStepFlag : flags & ~kSingleStepFlag);
}

/// Inserts the entry and calls `reader` after each instruction. `reader` must not allocate memory.
void InsertInSteps(AlarmTable& table, const AlarmKey& key, std::string_view value,
                   const std::function<void()>& reader) {
  read = reader;
  struct sigaction action {};
  struct sigaction previous {};
  action.sa_handler = OnStep;
  sigaction(SIGTRAP, &action, &previous);
  SetSingleStep(true);
  table.Insert(key, value);
  SetSingleStep(false);
  sigaction(SIGTRAP, &previous, nullptr);
}

/// A table that is read after each instruction of an insertion.
class AlarmTableInSingleSteps : public testing::Test {
 protected:
  void SetUp() override { steps = 0; }

  /// Every step must show the older value (none before the first insertion) or the new one, and never go back.
  void Insert(int number, const std::optional<std::string>& older, const std::string& newer) {
    const std::string name = std::to_string(number);
    const std::string neighbour = std::to_string(number - 1);
    bool isNew = false;
    InsertInSteps(table_, {"alarm", name, "c", "1"}, newer, [&] {
      const std::optional<std::string_view> seen = table_.Find({"alarm", name, "c", "1"});
      wrong_ += seen == newer || (!isNew && seen == older) ? 0 : 1;
      isNew = isNew || seen == newer;
      wrong_ += number == 0 || table_.Find({"alarm", neighbour, "c", "1"}) ? 0 : 1;
    });
    EXPECT_EQ(table_.Find({"alarm", name, "c", "1"}), newer);
  }

  AlarmTable table_;
  int wrong_ = 0;
};

TEST_F(AlarmTableInSingleSteps, ShowsAnEntryWithItsValueOrNotAtAll) {
  for (int i = 0; i < 50; ++i) {
    const std::string value = "value " + std::to_string(i);
    if (i < 2 || i > 46) {  // The first insertion allocates the slots, the 49th doubles them.
      Insert(i, std::nullopt, value);
    } else {
      table_.Insert({"alarm", std::to_string(i), "c", "1"}, value);
    }
  }
  EXPECT_GT(steps, 0U) << "the processor's single-step mode had no effect";
  EXPECT_EQ(wrong_, 0) << steps << " steps";
}

TEST_F(AlarmTableInSingleSteps, ShowsTheOlderValueUntilItShowsTheNewOne) {
  for (int i = 0; i < 4; ++i) {
    Insert(0, i == 0 ? std::nullopt : std::optional("value " + std::to_string(i - 1)),
           "value " + std::to_string(i));
  }
  EXPECT_GT(steps, 0U) << "the processor's single-step mode had no effect";
  EXPECT_EQ(wrong_, 0) << steps << " steps";
}

}  // namespace

#endif  // Single-step mode exists, and the sanitizer's own code is not interrupted.
