// Measures the time that the recorder adds to a call: each operation is called directly and through the
// recorder's interface, which records it to /dev/null. The calls fit into the queue, so that "dropped" is 0:
// a dropped call costs less than a recorded one.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "bench/bundle.h"
#include "tools/recorder/front.h"
#include "tools/recorder/recording.h"

namespace bench {
namespace {

using NS_ASCII::AsciiUtilInterface;

AsciiUtilInterface& Util() {
  static const Bundle bundle("ours", BENCH_BUNDLE);
  return bundle.util();
}

constexpr int kCalls = 50'000;
constexpr std::size_t kQueueSize = std::size_t{64} << 20;

const std::string kAlarm =
    "ID=48201,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=TRX1|TRX2|TRX3,PATH=North-BSC07-BTS0217,"
    "COUNT=3,TEXT=Abis link down";

template <class Call>
void Alone(benchmark::State& state, Call call) {
  for ([[maybe_unused]] auto unused : state) {
    call(Util());
  }
}

template <class Call>
void Recorded(benchmark::State& state, Call call) {
  recorder::Recording recording;
  recorder::Front front(recording);
  front.ForwardTo(&Util());
  recorder::Options options;
  options.output = "/dev/null";
  options.operations.set();
  recording.Start(
      options, {}, [](const std::string&) {}, kQueueSize);
  AsciiUtilInterface& util = front;
  // Touches the memory of both buffers of the queue, which are exchanged every 100 ms.
  for (int round = 0; round < 2; ++round) {
    for (int made = 0; made < kCalls; ++made) {
      call(util);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  }
  for ([[maybe_unused]] auto unused : state) {
    call(util);
  }
  const recorder::Totals totals = recording.Stop();
  state.counters["dropped"] = static_cast<double>(totals.dropped);
}

template <class Call>
void Enter(const std::string& name, Call call) {
  benchmark::RegisterBenchmark((name + "/alone").c_str(), Alone<Call>, call)->Iterations(kCalls);
  benchmark::RegisterBenchmark((name + "/recorded").c_str(), Recorded<Call>, call)->Iterations(kCalls);
}

const bool entered = [] {
  Enter("GetKeyValue", [](AsciiUtilInterface& util) {
    static const std::string key = "TEXT";
    benchmark::DoNotOptimize(util.GetKeyValue(key, kAlarm));
  });
  Enter("GetAlmCfgValue", [](AsciiUtilInterface& util) {
    static const std::string kind = "COM";
    static const std::string equipment = "BTS";
    static const std::string cause = "LOS";
    std::int64_t value = 0;
    benchmark::DoNotOptimize(util.GetAlmCfgValue(value, kind, equipment, cause, 7));
  });
  Enter("Str2Num", [](AsciiUtilInterface& util) {
    static const std::string number = "48201";
    int value = 0;
    benchmark::DoNotOptimize(util.Str2Num(number, value, 10));
  });
  Enter("ToUpper", [](AsciiUtilInterface& util) { benchmark::DoNotOptimize(util.ToUpper(kAlarm)); });
  Enter("SplitStr", [](AsciiUtilInterface& util) {
    static const std::string separator = ",";
    std::vector<std::string> pieces;
    benchmark::DoNotOptimize(util.SplitStr(kAlarm, separator, pieces));
  });
  Enter("ParseListMap", [](AsciiUtilInterface& util) {
    NS_ASCII::ListMap map;
    benchmark::DoNotOptimize(util.ParseListMap(map, kAlarm));
  });
  return true;
}();

}  // namespace
}  // namespace bench

BENCHMARK_MAIN();
