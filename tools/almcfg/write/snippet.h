#ifndef TOOLS_ALMCFG_WRITE_SNIPPET_H_
#define TOOLS_ALMCFG_WRITE_SNIPPET_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/almcfg/write/printable.h"

/// Cuts a long line to the part around a finding, for the text report. Pure function; any thread may call it.
namespace almcfg {

/// The part of a line around a finding, ready to print, and where the caret goes below it.
struct Snippet {
  std::string text;
  std::size_t indent = 0;  ///< columns before the caret
  std::size_t width = 1;   ///< columns that it marks
};

/// Shows the `length` bytes from `column` (counted from 1; it may be one after the end of the line) with what
/// fits into `width` columns around them; the rest of a long line is replaced by an ellipsis.
Snippet MakeSnippet(std::string_view line, std::size_t column, std::size_t length, Blanks blanks,
                    std::size_t width);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_SNIPPET_H_
