// StrToUpper, StrToLower and ToUpper, which obey the locale in force. The rivals ignore it, so the contest is
// held where that makes no difference.

#include <clocale>
#include <string>

#include "ascii_util/text_functions.h"
#include "bench/contest.h"
#include "bench/texts.h"
#include "src/asciiutilifimpl.h"

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

/// Puts the process into a locale for one call and back again.
class InLocale {
 public:
  explicit InLocale(const char* name) { std::setlocale(LC_CTYPE, name); }
  ~InLocale() { std::setlocale(LC_CTYPE, "C"); }
  InLocale(const InLocale&) = delete;
  InLocale& operator=(const InLocale&) = delete;
};

template <class Ours>
void EnterUpper(const std::string& name, const Input& input, Ours ours) {
  const Contest contest(name, input->size(), ours);
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [input] { return absl::AsciiStrToUpper(*input); });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [input] { return boost::to_upper_copy(*input); });
#endif
#if BENCH_WITH_POCO
  contest.Against("POCO", [input] { return Poco::toUpper(*input); });
#endif
  contest.Floor([input] { return std::string(*input); });
}

void EnterLower(const Input& input) {
  const Contest contest("StrToLower/" + SizeName(input->size()), input->size(),
                        [input] { return NS_ASCII::StrToLower(*input); });
#if BENCH_WITH_ABSEIL
  contest.Against("Abseil", [input] { return absl::AsciiStrToLower(*input); });
#endif
#if BENCH_WITH_BOOST
  contest.Against("Boost", [input] { return boost::to_lower_copy(*input); });
#endif
#if BENCH_WITH_POCO
  contest.Against("POCO", [input] { return Poco::toLower(*input); });
#endif
  contest.Floor([input] { return std::string(*input); });
}

const bool entered = [] {
  for (const std::size_t bytes : {16, 64, 4096}) {
    const Input input = Share(Words(bytes));
    const std::string size = SizeName(bytes);
    EnterUpper("StrToUpper/" + size, input, [input] { return NS_ASCII::StrToUpper(*input); });
    EnterUpper("ToUpper/" + size, input, [input] {
      NS_ASCII::AsciiUtilInterfaceImpl util;
      return util.ToUpper(*input);
    });
    EnterLower(input);
  }
  return true;
}();

}  // namespace
}  // namespace bench
