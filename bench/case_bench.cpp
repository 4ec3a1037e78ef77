// StrToUpper, StrToLower and ToUpper, which obey the locale in force. The rivals ignore it, so the contest is
// held where that makes no difference.

#include <string>

#include "ascii_util/text_functions.h"
#include "bench/contest.h"
#include "bench/texts.h"
#include "bench/util.h"
#include "tests/literal_rules.h"

#if BENCH_WITH_ABSEIL
#include <absl/strings/ascii.h>
#endif
#if BENCH_WITH_BOOST
#include <boost/algorithm/string/case_conv.hpp>
#endif
#if BENCH_WITH_POCO
#include <Poco/String.h>
#endif

namespace bench {
namespace {

using Text = std::string;

Text NameOf(const Text& operation, const Text& text, const Text& locale) {
  return operation + "/" + SizeName(text.size()) + (locale == "C" ? "" : ", " + locale);
}

template <class Ours, class Literal>
void EnterUpper(const Text& operation, const Text& text, const char* locale, Ours ours, Literal literal) {
  const TextContest contest(NameOf(operation, text, locale), text.size(), text, ours, locale);
  contest.Against("literal", literal);
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [](const Text& input) { return absl::AsciiStrToUpper(input); });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [](const Text& input) { return boost::to_upper_copy(input); });
#endif
#if BENCH_WITH_POCO
  contest.Against("POCO", [](const Text& input) { return Poco::toUpper(input); });
#endif
}

void EnterLower(const Text& text, const char* locale) {
  const TextContest contest(
      NameOf("StrToLower", text, locale), text.size(), text,
      [](const Text& input) { return NS_ASCII::StrToLower(input); }, locale);
  contest.Against("literal", [](const Text& input) { return literal::StrToLower(input); });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [](const Text& input) { return absl::AsciiStrToLower(input); });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [](const Text& input) { return boost::to_lower_copy(input); });
#endif
#if BENCH_WITH_POCO
  contest.Against("POCO", [](const Text& input) { return Poco::toLower(input); });
#endif
}

const bool entered = [] {
  for (const char* const locale : {"C", "C.UTF-8"}) {
    for (const std::size_t bytes : {16, 64, 4096}) {
      const Text text = Words(bytes);
      EnterUpper(
          "StrToUpper", text, locale, [](const Text& input) { return NS_ASCII::StrToUpper(input); },
          [](const Text& input) { return literal::StrToUpper(input); });
      EnterUpper(
          "ToUpper", text, locale, [](const Text& input) { return Util().ToUpper(input); },
          [](const Text& input) { return literal::ToUpper(input); });
      EnterLower(text, locale);
    }
  }
  return true;
}();

}  // namespace
}  // namespace bench
