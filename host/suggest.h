#ifndef HOST_SUGGEST_H_
#define HOST_SUGGEST_H_

#include <string>
#include <vector>

namespace host {

/// A pure function: "; did you mean NAME?" for the name most like `word`, letter case aside; `otherwise` when
/// none is like it: at most a third of its letters, and at least one, may have to be changed, added, dropped
/// or swapped with the next.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& names,
                       const std::string& otherwise = {});

}  // namespace host

#endif  // HOST_SUGGEST_H_
