// Results keep the order of the lines, however long each line takes, and threads work at the same time.

#include "examples/alarm_agent/ordered_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <set>

namespace alarm_agent {
namespace {

/// A source of that many lines; the text of each is its number.
struct CountingSource {
  std::uint64_t last;
  std::uint64_t calls = 0;

  bool operator()(FeedLine& line) {
    line = {++calls, std::to_string(calls), true};
    return calls <= last;
  }
};

std::vector<std::string> Numbers(std::uint64_t last) {
  std::vector<std::string> numbers;
  for (std::uint64_t i = 1; i <= last; ++i) numbers.push_back(std::to_string(i));
  return numbers;
}

TEST(OrderedPool, PassesOnAResultForEachLineInOrder) {
  for (const int threads : {1, 2, 4, 16}) {
    CountingSource source{20'000};
    std::vector<std::string> results;
    OrderedPool pool(
        std::ref(source), [](const FeedLine& line) { return line.text; },
        [&](const std::string& result) { results.push_back(result); });
    pool.Start(threads);
    pool.Join();
    EXPECT_EQ(results, Numbers(20'000)) << threads << " threads";
    EXPECT_EQ(source.calls, 20'001U) << "asked again after the end";
  }
}

TEST(OrderedPool, ThreadsWorkAtTheSameTime) {
  CountingSource source{2};
  std::promise<void> firstIsIn;
  std::promise<void> secondIsIn;
  std::vector<std::string> results;
  // Each of the two lines waits for the other one, so one thread alone would never end.
  const auto meet = [&](const FeedLine& line) {
    (line.number == 1 ? firstIsIn : secondIsIn).set_value();
    (line.number == 1 ? secondIsIn : firstIsIn).get_future().wait();
    return line.text;
  };
  OrderedPool pool(std::ref(source), meet, [&](const std::string& result) { results.push_back(result); });
  pool.Start(2);
  pool.Join();
  EXPECT_EQ(results, Numbers(2));
}

TEST(OrderedPool, WhileTheFirstLineIsSlowOthersFinishUpToTheWindow) {
  constexpr std::uint64_t kLines = 3 * OrderedPool::kWindow;
  std::promise<void> release;
  std::atomic<std::uint64_t> worked = 0;
  std::vector<std::string> results;
  CountingSource source{kLines};
  const auto work = [&, gate = release.get_future().share()](const FeedLine& line) {
    if (line.number == 1) gate.wait();
    ++worked;
    return line.text;
  };
  OrderedPool pool(std::ref(source), work, [&](const std::string& result) { results.push_back(result); });
  pool.Start(2);
  // The second thread finishes the lines 2 to kWindow, works on the next one and must wait to deliver it.
  while (worked < OrderedPool::kWindow) std::this_thread::yield();
  for (int i = 0; i < 1000; ++i) std::this_thread::yield();
  EXPECT_EQ(worked, OrderedPool::kWindow);
  EXPECT_TRUE(results.empty());
  release.set_value();
  pool.Join();
  EXPECT_EQ(results, Numbers(kLines));
}

TEST(OrderedPool, TheSourceAndTheSinkAreCalledByOneThreadAtATime) {
  std::atomic<int> inSource = 0;
  std::atomic<int> inSink = 0;
  std::atomic<bool> isAlone = true;
  CountingSource counting{5'000};
  const auto source = [&](FeedLine& line) {
    isAlone = isAlone && inSource.fetch_add(1) == 0;
    const bool isTaken = counting(line);
    std::this_thread::yield();
    --inSource;
    return isTaken;
  };
  const auto sink = [&](const std::string&) {
    isAlone = isAlone && inSink.fetch_add(1) == 0;
    std::this_thread::yield();
    --inSink;
  };
  OrderedPool pool(
      source, [](const FeedLine& line) { return line.text; }, sink);
  pool.Start(4);
  pool.Join();
  EXPECT_TRUE(isAlone);
}

TEST(OrderedPool, AnEmptySourceAndAPoolThatIsNotStartedEnd) {
  CountingSource source{0};
  OrderedPool pool(
      std::ref(source), [](const FeedLine& line) { return line.text; }, [](const std::string&) { FAIL(); });
  pool.Join();
  pool.Start(4);
  pool.Join();
  pool.Join();
  EXPECT_EQ(source.calls, 1U);
}

}  // namespace
}  // namespace alarm_agent
