#ifndef TOOLS_ALMCFG_REPAIR_REPAIR_TEXT_H_
#define TOOLS_ALMCFG_REPAIR_REPAIR_TEXT_H_

#include <string>
#include <string_view>
#include <vector>

#include "tools/almcfg/check/finding.h"
#include "tools/almcfg/repair/repair_line.h"

/// Repairs a whole file: each line on its own, then the lines that repeat or replace others. Compares with
/// the table of the original file, so that safe repairs keep every integer that queries get. The result is a
/// copy. Threads: one at a time.
namespace almcfg {

/// A file after its repair.
struct RepairedText {
  std::vector<std::string> original;               ///< the lines as read, with their LF
  std::vector<std::vector<std::string>> repaired;  ///< for each of them the lines that replace it
  std::vector<Finding> repairs;                    ///< in the order of lines; without hints

  /// The repaired file.
  [[nodiscard]] std::string Text() const;
};

/// Repairs a file. Comments and the order of lines are kept. Without `rules.unsafe`, and if the load ends,
/// every key for which queries got an integer keeps it, except keys with quotation marks or a byte order
/// mark. A query that failed may get an integer.
RepairedText RepairText(std::string_view content, const RepairRules& rules);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_REPAIR_REPAIR_TEXT_H_
