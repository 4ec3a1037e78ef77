#ifndef TOOLS_ALMCFG_NEAREST_H_
#define TOOLS_ALMCFG_NEAREST_H_

#include <cstddef>
#include <string>
#include <vector>

#include "tools/almcfg/desk_load.h"

namespace almcfg {

/// A key in force that is not the wanted one, but might be what was meant.
struct Neighbour {
  std::size_t distance = 0;  ///< the smaller, the nearer
  Place place;
  std::string difference;  ///< in words
};

/// How the two keys differ, when they differ little: each column in case, in edge blanks or in the way the
/// number is written, columns 3 and 4 exchanged, or a single column altogether. An empty text otherwise.
Neighbour Compare(const NS_ASCII::AlarmKey& wanted, const NS_ASCII::AlarmKey& present);

/// The nearest keys in force, nearest first, of equal ones the first in the files; at most `count`. A key
/// with a column that is altogether different is only named when there is no nearer one.
std::vector<Neighbour> FindNearest(const DeskLoad& load, const NS_ASCII::AlarmKey& wanted, std::size_t count);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_NEAREST_H_
