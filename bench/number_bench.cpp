// Str2Num and Num2Str.

#include <charconv>
#include <cstdlib>
#include <string>
#include <utility>

#include "ascii_util/text_functions.h"
#include "bench/contest.h"
#include "bench/util.h"
#include "tests/literal_rules.h"

#if BENCH_WITH_ABSEIL
#include <absl/strings/numbers.h>
#include <absl/strings/str_cat.h>
#endif
#if BENCH_WITH_BOOST
#include <boost/lexical_cast.hpp>
#endif
#if BENCH_WITH_FMT
#include <fmt/format.h>
#endif

namespace bench {
namespace {

/// Whether all of the text was a number, and which.
using Number = std::pair<bool, int>;

void EnterStr2Num(const std::string& text) {
  const Input input = Share(text);
  const Contest contest("Str2Num/" + std::to_string(text.size()) + " digits", 0, [input] {
    int value = 0;
    const bool whole = Util().Str2Num(*input, value, 10);
    return Number(whole, value);
  });
  contest.Against("literal", [input] {
    int value = 0;
    const bool whole = literal::Str2Num(*input, value, 10);
    return Number(whole, value);
  });
  contest.Against("strtol", [input] {
    char* end = nullptr;
    const long value = std::strtol(input->c_str(), &end, 10);
    return Number(*end == '\0', static_cast<int>(value));
  });
  contest.Against("stoi", [input] { return Number(true, std::stoi(*input)); });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [input] {
    int value = 0;
    const bool whole = absl::SimpleAtoi(*input, &value);
    return Number(whole, value);
  });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [input] { return Number(true, boost::lexical_cast<int>(*input)); });
#endif
}

/// Hands the number out in a way that the compiler cannot see through.
int Opaque(int number) {
  benchmark::DoNotOptimize(number);
  return number;
}

void EnterNum2Str(const std::string& inputName, int number) {
  const Contest contest("Num2Str/" + inputName, 0, [number] { return NS_ASCII::Num2Str(Opaque(number)); });
  contest.Against("literal", [number] { return literal::Num2Str(Opaque(number)); });
  contest.Against("to_string", [number] { return std::to_string(Opaque(number)); });
#if BENCH_WITH_FMT
  contest.Against("fmt", [number] { return fmt::to_string(Opaque(number)); });
#endif
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [number] { return absl::StrCat(Opaque(number)); });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [number] { return boost::lexical_cast<std::string>(Opaque(number)); });
#endif
  const std::string answer = std::to_string(number);
  contest.Floor([answer] { return std::string(answer); });
}

const bool entered = [] {
  EnterStr2Num("7");
  EnterStr2Num("31415");
  EnterStr2Num("1234567890");
  EnterNum2Str("1 digit", 7);
  EnterNum2Str("5 digits", 31415);
  EnterNum2Str("11 characters", -2147483647 - 1);
  return true;
}();

}  // namespace
}  // namespace bench
