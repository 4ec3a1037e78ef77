#ifndef TOOLS_ALMCFG_CHECK_EXPLAIN_H_
#define TOOLS_ALMCFG_CHECK_EXPLAIN_H_

#include <string>

#include "tools/almcfg/check/finding.h"

/// The output of `almcfg check --explain`. The text of docs/alarm-config.md is compiled into the program. Pure
/// function; any thread may call it.
namespace almcfg {

/// The rule's name and severity as a heading, then its section of docs/alarm-config.md.
std::string Explanation(const Rule& rule);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECK_EXPLAIN_H_
