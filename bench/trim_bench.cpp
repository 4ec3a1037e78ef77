// Trim: a short text that needs none, a usual one, one that is nothing but blanks, and a long one.

#include "ascii_util/text_functions.h"
#include "bench/contest.h"
#include "bench/texts.h"
#include "tests/literal_rules.h"

#if BENCH_WITH_ABSEIL
#include <absl/strings/ascii.h>
#endif
#if BENCH_WITH_BOOST
#include <boost/algorithm/string/trim.hpp>
#endif
#if BENCH_WITH_POCO
#include <Poco/String.h>
#endif

namespace bench {
namespace {

void EnterTrim(const std::string& inputName, const std::string& text) {
  const TextContest contest("Trim/" + inputName, 0, text,
                            [](const std::string& input) { return NS_ASCII::Trim(input); });
  contest.Against("literal", [](const std::string& input) { return literal::Trim(input); });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil",
                  [](const std::string& input) { return std::string(absl::StripAsciiWhitespace(input)); });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [](const std::string& input) { return boost::trim_copy(input); });
#endif
#if BENCH_WITH_POCO
  contest.Against("POCO", [](const std::string& input) { return Poco::trim(input); });
#endif
  contest.Against("find_first_not_of", [](const std::string& input) {
    const std::size_t first = input.find_first_not_of(" \t\n\r");
    return first == std::string::npos ? std::string()
                                      : input.substr(first, input.find_last_not_of(" \t\n\r") - first + 1);
  });
}

const bool entered = [] {
  EnterTrim("12 B, no blanks", Words(12));
  EnterTrim("12 B, a blank at each end", ' ' + Words(10) + '\n');
  EnterTrim("12 B of blanks", Blanks(12));
  EnterTrim("40 B, 2 blanks at each end", "\t " + Words(36) + "\r\n");
  EnterTrim("40 B of blanks", Blanks(40));
  EnterTrim("4 KiB of blanks", Blanks(4096));
  EnterTrim("4 KiB of blanks around a word", Blanks(2048) + Words(10) + Blanks(2038));
  return true;
}();

}  // namespace
}  // namespace bench
