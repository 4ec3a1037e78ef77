#ifndef TOOLS_ALMCFG_LINE_PARTS_H_
#define TOOLS_ALMCFG_LINE_PARTS_H_

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "src/strfunctions.h"

/// Where things stand in a line, for carets and messages. Whether a line is good is not decided here.
namespace almcfg {

/// A piece of a line.
struct Part {
  std::size_t at = 0;  ///< its first byte, counted from the start of the line as read
  std::string_view text;
};

/// The line without the blanks at its ends.
inline Part Trimmed(std::string_view line) {
  const std::string_view text = NS_ASCII::TrimView(line);
  return {text.empty() ? 0 : static_cast<std::size_t>(text.data() - line.data()), text};
}

/// Calls `visit` for every piece between two separators, empty ones included.
template <class Visit>
void ForEachPart(const Part& whole, char separator, Visit visit) {
  for (std::size_t from = 0;;) {
    const std::size_t to = std::min(whole.text.find(separator, from), whole.text.size());
    visit(Part{whole.at + from, whole.text.substr(from, to - from)});
    if (to == whole.text.size()) {
      return;
    }
    from = to + 1;
  }
}

inline std::vector<Part> PartsOf(const Part& whole, char separator) {
  std::vector<Part> parts;
  ForEachPart(whole, separator, [&parts](const Part& part) { parts.push_back(part); });
  return parts;
}

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_LINE_PARTS_H_
