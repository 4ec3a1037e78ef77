#ifndef TOOLS_ALMCFG_CHECK_ANSWER_H_
#define TOOLS_ALMCFG_CHECK_ANSWER_H_

#include <cstdint>
#include <string_view>

/// Converts a value of the file to the answer that callers get. Pure functions; any thread may call them.
namespace almcfg {

/// What `GetAlmCfgValue` returns for a key, and the value it stores when `result` is 0.
struct Answer {
  std::int64_t result = 0;
  std::int64_t value = 0;
};

inline bool operator==(const Answer& a, const Answer& b) {
  return a.result == b.result && (a.result != 0 || a.value == b.value);
}

/// The answer that callers get when column 5 is `value`. Computed by the bundle's own conversion.
Answer AnswerFor(std::string_view value);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECK_ANSWER_H_
