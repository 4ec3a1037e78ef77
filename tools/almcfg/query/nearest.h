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

/// Describes how two similar keys differ: in case, quotation marks, edge blanks or the spelling of the
/// number; in the order of columns 3 and 4; or in one column, which is entirely different. The description is
/// empty for other keys.
Neighbour Compare(const NS_ASCII::AlarmKey& wanted, const NS_ASCII::AlarmKey& present);

/// At most `count` keys in force, nearest first, equally near ones in the order of the files. Keys with an
/// entirely different column are returned only when there are no nearer ones.
std::vector<Neighbour> FindNearest(const LoadedTable& table, const NS_ASCII::AlarmKey& wanted,
                                   std::size_t count);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_QUERY_NEAREST_H_
