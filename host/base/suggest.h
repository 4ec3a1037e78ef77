#ifndef HOST_BASE_SUGGEST_H_
#define HOST_BASE_SUGGEST_H_

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

}  // namespace host

#endif  // HOST_BASE_SUGGEST_H_
