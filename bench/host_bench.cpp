// What depends on the platform, with the open host as the platform: GetTimeStamp and the conversion to
// ISO-8859-1.

#include <iconv.h>

#include <array>
#include <ctime>
#include <string>

#include "ascii_util/text_functions.h"
#include "bench/contest.h"
#include "bench/texts.h"
#include "bench/util.h"

#if BENCH_WITH_ABSEIL
#include <absl/time/clock.h>
#include <absl/time/time.h>
#endif

namespace bench {
namespace {

/// A stamp changes each second; answers are compared by their form.
std::string Form(std::string stamp) {
  for (char& c : stamp) {
    c = c >= '0' && c <= '9' ? '0' : c;
  }
  return stamp;
}

std::string StampWithStrftime() {
  const std::time_t now = std::time(nullptr);
  std::tm utc;
  gmtime_r(&now, &utc);
  std::array<char, 20> stamp;
  return {stamp.data(), std::strftime(stamp.data(), stamp.size(), "%Y-%m-%dT%H:%M:%S", &utc)};
}

/// Converts with a descriptor that is opened for the call.
std::string ConvertWithIconv(const std::string& text) {
  const iconv_t descriptor = iconv_open("ISO-8859-1", "UTF-8");
  std::string out(text.size(), '\0');
  char* from = const_cast<char*>(text.data());
  char* to = out.data();
  std::size_t left = text.size();
  std::size_t room = out.size();
  iconv(descriptor, &from, &left, &to, &room);
  iconv_close(descriptor);
  out.resize(out.size() - room);
  return out;
}

void EnterTimeStamp() {
  const auto ours = [] { return Util().GetTimeStamp(); };
  if (Form(ours()) != Form(StampWithStrftime())) {
    Disagree("strftime");
  }
  benchmark::RegisterBenchmark("GetTimeStamp/now/ours", [ours](benchmark::State& state) {
    for ([[maybe_unused]] auto unused : state) {
      benchmark::DoNotOptimize(ours());
    }
  });
  benchmark::RegisterBenchmark("GetTimeStamp/now/strftime", [](benchmark::State& state) {
    for ([[maybe_unused]] auto unused : state) {
      benchmark::DoNotOptimize(StampWithStrftime());
    }
  });
#if BENCH_WITH_ABSEIL
  benchmark::RegisterBenchmark("GetTimeStamp/now/Abseil", [](benchmark::State& state) {
    for ([[maybe_unused]] auto unused : state) {
      benchmark::DoNotOptimize(absl::FormatTime("%Y-%m-%dT%H:%M:%S", absl::Now(), absl::UTCTimeZone()));
    }
  });
#endif
}

void EnterConversion(const std::string& inputName, const std::string& text) {
  const Input input = Share(text);
  const Contest contest("utf8toiso8859/" + inputName, text.size(),
                        [input] { return NS_ASCII::utf8toiso8859(*input); });
  contest.Against("iconv_open per call", [input] { return ConvertWithIconv(*input); });
  contest.Floor([input] { return std::string(*input); });
}

const bool entered = [] {
  EnterTimeStamp();
  for (const std::size_t bytes : {64, 4096}) {
    EnterConversion("ASCII, " + SizeName(bytes), Words(bytes));
    EnterConversion("umlauts, " + SizeName(bytes), Replaced(Words(bytes), "o", "\xC3\xB6"));
  }
  return true;
}();

}  // namespace
}  // namespace bench
