#ifndef TOOLS_ALMCFG_BAD_LINE_H_
#define TOOLS_ALMCFG_BAD_LINE_H_

#include <optional>
#include <string_view>

#include "tools/almcfg/finding.h"
#include "tools/almcfg/grammar.h"

/// Why the bundle did not store a line. `line` is what it was given, up to the first NUL. The line number of
/// the finding is left to the caller.
namespace almcfg {

/// For a line that was dropped; none for one of blanks only, which misses nothing.
std::optional<Finding> ExplainDropped(std::string_view line);

/// For a line with a message.
Finding ExplainLogged(std::string_view line, const LoggedMessage& message);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_BAD_LINE_H_
