#ifndef TOOLS_ALMCFG_QUERY_NEAREST_H_
#define TOOLS_ALMCFG_QUERY_NEAREST_H_

#include <cstddef>
#include <string>
#include <vector>

#include "tools/almcfg/read/loaded_table.h"

/// Finds keys that are similar to one that no line serves, and describes the difference. The table is
/// borrowed; the places in the results are valid as long as it. Any thread may call.
namespace almcfg {

/// A key in force that is similar to the wanted one.
struct Neighbour {
  std::size_t distance = 0;  ///< the smaller, the nearer
  Place place;
  std::string difference;  ///< in words
};

/// For each wanted key at most `count` keys in force, nearest first, equally near ones in the order of the
/// files. Similar keys differ in case, quotation marks, edge blanks or the spelling of the number; in the
/// order of columns 3 and 4; or in one column, which is entirely different. Keys of the last kind are returned
/// only when there are no nearer ones. Visits the table once, and compares a few numbers for each pair of keys.
std::vector<std::vector<Neighbour>> FindNearest(const LoadedTable& table,
                                                const std::vector<NS_ASCII::AlarmKey>& wanted,
                                                std::size_t count);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_QUERY_NEAREST_H_
