#ifndef TOOLS_ALMCFG_SNIPPET_H_
#define TOOLS_ALMCFG_SNIPPET_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/almcfg/visible.h"

namespace almcfg {

/// The part of a line around a finding, ready to print, and where the caret goes below it.
struct Snippet {
  std::string text;
  std::size_t indent = 0;  ///< columns before the caret
  std::size_t width = 1;   ///< columns that it marks
};

/// Shows the `length` bytes from `column` (counted from 1; it may be one behind the line) with what fits
/// around them; the rest of a long line is cut and replaced by an ellipsis.
Snippet MakeSnippet(std::string_view line, std::size_t column, std::size_t length, Blanks blanks);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_SNIPPET_H_
