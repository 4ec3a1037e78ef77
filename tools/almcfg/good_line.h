#ifndef TOOLS_ALMCFG_GOOD_LINE_H_
#define TOOLS_ALMCFG_GOOD_LINE_H_

#include <string_view>
#include <vector>

#include "tools/almcfg/finding.h"
#include "tools/almcfg/grammar.h"

/// What is odd about a line that the bundle stored.
namespace almcfg {

/// Appends what a query will trip over, and what is worth a note. `line` is what the bundle was given, up to
/// the first NUL, and `records` what it made of it. Line numbers are left to the caller.
void FindOddities(std::string_view line, const Records& records, std::vector<Finding>& findings);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_GOOD_LINE_H_
