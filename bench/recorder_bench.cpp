// Measures the time that the recorder adds to a call: ascii_util_recorder_bench [ROUNDS].
//
// In each round an operation is called directly and then through the recorder's interface, which records to
// /dev/null. The two are compared within a round, because the speed of the machine changes between rounds.
// Prints medians over the rounds in nanoseconds per call: "alone", "recorded" and their difference "added" are
// the caller's processor time, "elapsed" is the difference in elapsed time. Nothing may be dropped: a dropped
// call costs less than a recorded one.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "bench/bundle.h"
#include "tools/recorder/front.h"
#include "tools/recorder/recording.h"

namespace bench {
namespace {

using NS_ASCII::AsciiUtilInterface;

constexpr int kCalls = 100;  ///< in a round; few enough that most rounds are not interrupted
constexpr std::uint32_t kQueueSize = 16U << 20U;

const std::string kAlarm =
    "ID=48201,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=TRX1|TRX2|TRX3,PATH=North-BSC07-BTS0217,"
    "COUNT=3,TEXT=Abis link down";

double Now(clockid_t clock) {
  std::timespec now{};
  ::clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

struct Time {
  double processor = 0;  ///< nanoseconds of one call, of this thread's processor time
  double elapsed = 0;
};

template <class Call>
Time TimeOf(AsciiUtilInterface& util, Call call) {
  const double elapsed = Now(CLOCK_MONOTONIC);
  const double processor = Now(CLOCK_THREAD_CPUTIME_ID);
  for (int made = 0; made < kCalls; ++made) {
    call(util);
  }
  return {(Now(CLOCK_THREAD_CPUTIME_ID) - processor) / kCalls, (Now(CLOCK_MONOTONIC) - elapsed) / kCalls};
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

template <class Call>
void Compare(const char* name, AsciiUtilInterface& util, int rounds, Call call) {
  recorder::Recording recording;
  recorder::Front front(recording);
  front.ForwardTo(&util);
  recorder::Options options;
  options.output = "/dev/null";
  options.operations.set();
  recording.Start(
      options, {}, [](const std::string&) {}, kQueueSize);
  std::array<std::vector<double>, 4> times;
  for (int round = 0; round < rounds; ++round) {
    const Time alone = TimeOf(util, call);
    const Time recorded = TimeOf(front, call);
    times[0].push_back(alone.processor);
    times[1].push_back(recorded.processor);
    times[2].push_back(recorded.processor - alone.processor);
    times[3].push_back(recorded.elapsed - alone.elapsed);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));  // The writer catches up.
  }
  std::printf("%-16s %8.0f %8.0f %8.0f %8.0f %8llu\n", name, Median(times[0]), Median(times[1]),
              Median(times[2]), Median(times[3]), static_cast<unsigned long long>(recording.Stop().dropped));
}

void CompareAll(AsciiUtilInterface& util, int rounds) {
  static const std::string kKey = "TEXT";
  static const std::string kKind = "COM";
  static const std::string kEquipment = "BTS";
  static const std::string kCause = "LOS";
  static const std::string kNumber = "48201";
  static const std::string kSeparator = ",";
  static const std::string kName = "PATH";
  std::printf("%-16s %8s %8s %8s %8s %8s\n", "operation", "alone", "recorded", "added", "elapsed", "dropped");
  Compare("GetKeyValue", util, rounds,
          [](AsciiUtilInterface& to) { benchmark::DoNotOptimize(to.GetKeyValue(kKey, kAlarm)); });
  Compare("GetAlmCfgValue", util, rounds, [](AsciiUtilInterface& to) {
    std::int64_t value = 0;
    benchmark::DoNotOptimize(to.GetAlmCfgValue(value, kKind, kEquipment, kCause, 7));
  });
  Compare("Str2Num", util, rounds, [](AsciiUtilInterface& to) {
    int value = 0;
    benchmark::DoNotOptimize(to.Str2Num(kNumber, value, 10));
  });
  Compare("ToUpper", util, rounds,
          [](AsciiUtilInterface& to) { benchmark::DoNotOptimize(to.ToUpper(kAlarm)); });
  Compare("SplitStr", util, rounds, [](AsciiUtilInterface& to) {
    std::vector<std::string> pieces;
    benchmark::DoNotOptimize(to.SplitStr(kAlarm, kSeparator, pieces));
  });
  Compare("ParseListMap", util, rounds, [](AsciiUtilInterface& to) {
    NS_ASCII::ListMap map;
    benchmark::DoNotOptimize(to.ParseListMap(map, kAlarm));
  });
  NS_ASCII::ListMap map;
  util.ParseListMap(map, kAlarm);
  Compare("GetMapList", util, rounds, [&map](AsciiUtilInterface& to) {
    std::vector<std::string> items;
    benchmark::DoNotOptimize(to.GetMapList(map, kName, items));
  });
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 1000;
  if (rounds <= 0) {
    std::fprintf(stderr, "usage: %s [ROUNDS], a positive integer\n", argv[0]);
    return 2;
  }
  const bench::Bundle bundle("ours", BENCH_BUNDLE);
  bench::CompareAll(bundle.util(), rounds);
}
