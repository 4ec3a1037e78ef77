#ifndef TOOLS_ALMCFG_REPAIR_REPAIR_LINE_H_
#define TOOLS_ALMCFG_REPAIR_REPAIR_LINE_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/almcfg/check/finding.h"

/// Repairs that need one line only, such as separators, quotation marks and blanks. The caller decides,
/// through `KeepsAnswers`, whether a line with other keys may replace the original one. Removing blanks or a
/// byte order mark never makes a loaded line a comment, unless `RepairRules::unsafe`. Results are copies.
/// Threads: one at a time.
namespace almcfg {

/// Which findings may be repaired.
struct RepairRules {
  CodeSet codes;
  bool unsafe = false;  ///< also repairs that may change answers, or choose between two lines

  [[nodiscard]] bool Allows(Code code) const {
    const Repair repair = RuleOf(code).repair;
    return codes[static_cast<std::size_t>(code)] &&
           (repair == Repair::kSafe || (repair == Repair::kUnsafe && unsafe));
  }
};

/// Returns whether every key for which queries got an integer keeps it when the line is loaded in place of
/// the original one. Called for repairs that add or change keys. With `RepairRules::unsafe` it is not called,
/// and may be empty. The other safe repairs change neither keys nor values of a loaded line, except that the
/// first key loses a byte order mark and that a heading becomes a comment.
using KeepsAnswers = std::function<bool(std::string_view line)>;

/// Repairs one line (without its LF) on its own. Returns the lines that replace it, usually one, and appends
/// what was repaired to `repairs`, of which the caller sets the line number. Repairing the result again
/// changes nothing.
std::vector<std::string> RepairLine(std::string_view line, bool isFirst, const RepairRules& rules,
                                    const KeepsAnswers& keepsAnswers, std::vector<Finding>& repairs);

/// The parts with `separator` between two of them.
std::string Join(const std::vector<std::string>& parts, char separator);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_REPAIR_REPAIR_LINE_H_
