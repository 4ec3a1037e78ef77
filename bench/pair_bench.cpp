// GetKeyValue, IsKeyValueAboveOne and IsContain on a text of twelve pairs, as alarms carry them.

#include <cstdlib>
#include <string>
#include <string_view>

#include "bench/contest.h"
#include "bench/util.h"
#include "tests/literal_rules.h"

#if BENCH_WITH_ABSEIL
#include <absl/strings/ascii.h>
#include <absl/strings/match.h>
#include <absl/strings/str_split.h>
#endif

namespace bench {
namespace {

constexpr const char* kPairs =
    "severity=3,node=ne-0417,slot=12,port=7,cause=LOS,count=4,first=1699999000,last=1700000321,"
    "acked=0,user=operator,region=north-west,ticket=T-99812";

/// What one writes by hand: look for "key=" at the start of a pair.
std::string FindKey(const std::string& key, const std::string& text) {
  const std::string wanted = key + "=";
  for (std::size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) {
    if (at == 0 || text[at - 1] == ',') {
      const std::size_t start = at + wanted.size();
      return text.substr(start, text.find(',', start) - start);
    }
  }
  return {};
}

#if BENCH_WITH_ABSEIL
std::string FindWithAbseil(const std::string& key, const std::string& text) {
  for (const absl::string_view piece : absl::StrSplit(text, ',')) {
    const std::pair<absl::string_view, absl::string_view> pair =
        absl::StrSplit(absl::StripAsciiWhitespace(piece), absl::MaxSplits('=', 1));
    if (pair.first == key) {
      return std::string(pair.second);
    }
  }
  return {};
}
#endif

void EnterGetKeyValue(const std::string& inputName, const std::string& keyText) {
  const Input text = Share(kPairs);
  const Input key = Share(keyText);
  const Contest contest("GetKeyValue/" + inputName, 0,
                        [text, key] { return Util().GetKeyValue(*key, *text); });
  contest.Against("literal", [text, key] { return literal::GetKeyValue(*key, *text); });
  contest.Against("find(key=)", [text, key] { return FindKey(*key, *text); });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [text, key] { return FindWithAbseil(*key, *text); });
#endif
}

void EnterIsKeyValueAboveOne() {
  const Input text = Share(kPairs);
  const Input key = Share("count");
  const Contest contest("IsKeyValueAboveOne/6th of 12 pairs", 0,
                        [text, key] { return Util().IsKeyValueAboveOne(*key, *text); });
  contest.Against("literal", [text, key] { return literal::IsKeyValueAboveOne(*key, *text); });
  contest.Against("find(key=)", [text, key] { return std::atoi(FindKey(*key, *text).c_str()) > 1; });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [text, key] { return std::atoi(FindWithAbseil(*key, *text).c_str()) > 1; });
#endif
}

void EnterIsContain() {
  const Input text = Share(kPairs);
  const Input part = Share("north-west");
  const Contest contest("IsContain/138 B, near the end", 0,
                        [text, part] { return Util().IsContain(*part, *text); });
  contest.Against("literal", [text, part] { return literal::IsContain(*part, *text); });
  contest.Against("string_view::find",
                  [text, part] { return std::string_view(*text).find(*part) != std::string_view::npos; });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [text, part] { return absl::StrContains(*text, *part); });
#endif
}

const bool entered = [] {
  EnterGetKeyValue("first of 12 pairs", "severity");
  EnterGetKeyValue("last of 12 pairs", "ticket");
  EnterGetKeyValue("absent, its first letter frequent", "state");
  EnterGetKeyValue("absent, its first letter rare", "vendor");
  EnterIsKeyValueAboveOne();
  EnterIsContain();
  return true;
}();

}  // namespace
}  // namespace bench
