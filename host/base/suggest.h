#ifndef HOST_BASE_SUGGEST_H_
#define HOST_BASE_SUGGEST_H_

#include <algorithm>
#include <string>
#include <vector>

#include "framework/visibility.h"

namespace host {

/// Suggests a name for a misspelt word. Returns "; did you mean NAME?" with the name of the smallest edit
/// distance from `word`, ignoring case. Returns `otherwise` when every distance is larger than a third of the
/// length of `word` (at least 1), and for words over 100 bytes. Changing, adding or removing a letter and
/// swapping two neighbours each count 1. Pure function; any thread may call it.
PLATFORM_API std::string DidYouMean(const std::string& word, const std::vector<std::string>& names,
                                    const std::string& otherwise = {});

/// The names of `rows`, whose elements have a member `name`.
template <class Rows>
std::vector<std::string> NamesOf(const Rows& rows) {
  std::vector<std::string> names;
  names.reserve(rows.size());
  for (const auto& row : rows) {
    names.emplace_back(row.name);
  }
  return names;
}

/// The first of `rows` that has that name, borrowed; null when there is none.
template <class Rows>
auto* FindNamed(const Rows& rows, const std::string& name) {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.name == name; });
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace host

#endif  // HOST_BASE_SUGGEST_H_
