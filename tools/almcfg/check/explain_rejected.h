#ifndef TOOLS_ALMCFG_CHECK_EXPLAIN_REJECTED_H_
#define TOOLS_ALMCFG_CHECK_EXPLAIN_REJECTED_H_

#include <optional>
#include <string>
#include <string_view>

#include "src/alarmconfig/almgrammar.h"
#include "tools/almcfg/check/finding.h"

/// Explains lines from which a load takes no record: which part of the line is wrong, and how to correct it.
/// Pure functions; any thread may call them.
namespace almcfg {

/// Explains why a load adds no record for a line that is not a comment. `line` is the text that was parsed.
/// None when the line is accepted or holds blanks only. The caller sets the line number.
std::optional<Finding> ExplainRejected(std::string_view line, const NS_ASCII::ParsedLine& parsed);

/// The finding for a line whose trimmed text is a heading; `consequence` says what a load does with the line.
Finding Heading(std::string_view line, std::string_view trimmed, const std::string& consequence);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECK_EXPLAIN_REJECTED_H_
