#ifndef TOOLS_ALMCFG_CHECK_LINT_ACCEPTED_H_
#define TOOLS_ALMCFG_CHECK_LINT_ACCEPTED_H_

#include <string_view>
#include <vector>

#include "src/alarmconfig/almgrammar.h"
#include "tools/almcfg/check/finding.h"

/// Finds what is odd about lines that a load accepts, such as numbers that no caller asks for. Any thread may
/// call, with a list of its own.
namespace almcfg {

/// Appends a finding for everything odd about a line that a load accepts. `line` is the text that was parsed.
/// The caller sets the line numbers.
void LintAccepted(std::string_view line, const NS_ASCII::ParsedLine& parsed, std::vector<Finding>& findings);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECK_LINT_ACCEPTED_H_
