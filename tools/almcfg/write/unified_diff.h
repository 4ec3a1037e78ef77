#ifndef TOOLS_ALMCFG_WRITE_UNIFIED_DIFF_H_
#define TOOLS_ALMCFG_WRITE_UNIFIED_DIFF_H_

#include <iosfwd>
#include <string>
#include <vector>

/// The output of `almcfg fix --diff`. The stream is borrowed. Threads: one at a time for each stream.
namespace almcfg {

/// Writes a unified diff with three lines of context; writes nothing when nothing changes. patch(1) applies it if
/// `name` needs no escapes and the lines were not made printable. `replacements[i]` are the lines in place of
/// `original[i]`; lines have their LF. With `isTerminal` the lines are made printable, for people.
void WriteUnifiedDiff(std::ostream& out, const std::string& name, const std::vector<std::string>& original,
                      const std::vector<std::vector<std::string>>& replacements, bool isTerminal);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_UNIFIED_DIFF_H_
