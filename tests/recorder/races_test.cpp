// Calls of eight threads while recordings begin and end and the configuration is loaded again, checked by
// ThreadSanitizer and by their answers.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "src/alarmconfig/almconfig.h"
#include "src/interface/asciiutilifimpl.h"
#include "tests/recorder/recorded_calls.h"
#include "tests/temp_directory.h"
#include "tools/recorder/front.h"
#include "tools/recorder/recording.h"

namespace {

using recording_format::Operation;

constexpr int kThreads = 8;
constexpr int kRounds = 500;

/// One thread's calls. Each answer names the thread, so that the test detects an exchanged one.
void CallAll(NS_ASCII::AsciiUtilInterface& util, int thread) {
  const std::string name = "thread" + std::to_string(thread);
  for (int round = 0; round < kRounds; ++round) {
    ASSERT_EQ(util.ToUpper(name), "THREAD" + std::to_string(thread));
    ASSERT_EQ(util.GetKeyValue("B", "A=1,B=" + name), name);
    std::vector<std::string> pieces;
    util.SplitStr(name + "|" + name, "|", pieces);
    ASSERT_EQ(pieces, (std::vector<std::string>{name, name}));
    std::int64_t value = -1;
    ASSERT_EQ(util.GetAlmCfgValue(value, "LINK", "DOWN", "trunk", 7), 0);
    ASSERT_TRUE(value == 1 || value == 2) << value;
  }
}

void OnAllThreads(NS_ASCII::AsciiUtilInterface& util) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&util, thread] { CallAll(util, thread); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

class RecorderRaces : public testing::Test {
 protected:
  RecorderRaces() {
    options_.output = dir_.path() / "calls.jsonl";
    options_.operations.set();
    front_.ForwardTo(&util_);
    LoadConfig(1);
  }

  void LoadConfig(int value) const {
    const std::string text = "LINK\tDOWN\ttrunk\t7\t" + std::to_string(value) + "\n";
    NS_ASCII::Alarm_Config_Param::Instance()->LoadConfig(
        dir_.Write("config" + std::to_string(value), text).c_str());
  }

  /// Runs `action` at least once, and again and again while eight threads call.
  template <class Action>
  void Beside(Action action) {
    std::atomic<bool> isOver = false;
    std::thread other([&] {
      do {
        action();
      } while (!isOver);
    });
    OnAllThreads(front_);
    isOver = true;
    other.join();
  }

  void Start() {
    recording_.Start(
        options_, {}, [](const std::string&) {}, std::uint32_t{16} << 20);
  }

  const TempDirectory dir_;
  recorder::Options options_;
  NS_ASCII::AsciiUtilInterfaceImpl util_;
  recorder::Recording recording_;
  recorder::Front front_{recording_};
};

TEST_F(RecorderRaces, EveryCallOfEightThreadsIsRecordedWhileTheConfigurationIsLoadedAgain) {
  Start();
  int value = 1;
  Beside([&] {
    value = 3 - value;
    LoadConfig(value);
  });
  const recorder::Totals totals = recording_.Stop();
  EXPECT_EQ(totals.dropped, 0U);
  const recorder_test::Recorded recorded = recorder_test::ReadRecording(options_.output);
  EXPECT_EQ(recorded.problems, 0U);
  EXPECT_EQ(recorded.records.size(), std::size_t{kThreads} * kRounds * 4);
  // No record contains parts of two calls.
  std::map<std::int64_t, std::set<recording_format::Value>> argumentsByThread;
  for (const recording_format::Record& record : recorded.records) {
    if (record.operation == Operation::kToUpper) {
      argumentsByThread[record.thread].insert(record.in[0]);
    }
  }
  EXPECT_EQ(argumentsByThread.size(), std::size_t{kThreads});
  for (const auto& [thread, arguments] : argumentsByThread) {
    EXPECT_EQ(arguments.size(), 1U) << thread;
  }
}

TEST_F(RecorderRaces, RecordingsBeginAndEndWhileEightThreadsCall) {
  int number = 0;
  Beside([&] {
    Start();
    // A call of this thread's own: the scheduler may keep the other threads from calling in between.
    front_.Str2Num("1", number, 10);
    EXPECT_GT(recording_.Stop().records, 0U);
    const recorder_test::Recorded recorded = recorder_test::ReadRecording(options_.output);
    EXPECT_EQ(recorded.problems, 0U);
    EXPECT_EQ(recorded.tails.size(), 1U);
  });
}

TEST_F(RecorderRaces, AForkedChildCallsWhileThreadsOfTheParentHoldTheQueue) {
  Start();
  Beside([&] {
    const pid_t child = ::fork();
    if (child == 0) {
      recording_.AbandonAfterFork();
      front_.IsValid();  // Allocates nothing.
      ::_exit(recording_.Stop().records == 0 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  });
  const recorder::Totals totals = recording_.Stop();
  EXPECT_EQ(totals.records + totals.dropped, std::uint64_t{kThreads} * kRounds * 4);
}

TEST_F(RecorderRaces, FilesAreRotatedWhileEightThreadsCall) {
  options_.limit = 100000;
  Start();
  OnAllThreads(front_);
  EXPECT_EQ(recording_.Stop().problem, "");
  for (const char* const suffix : {"", ".1"}) {
    const recorder_test::Recorded recorded = recorder_test::ReadRecording(options_.output + suffix);
    EXPECT_EQ(recorded.problems, 0U);
    ASSERT_EQ(recorded.tails.size(), 1U);
    EXPECT_EQ(recorded.records.size(), static_cast<std::size_t>(recorded.tails[0].records));
  }
}

}  // namespace
