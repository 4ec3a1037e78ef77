#ifndef SRC_INTERFACE_LISTMAP_H_
#define SRC_INTERFACE_LISTMAP_H_

#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"

/// Splitting, and the lists of a `ListMap`.
namespace NS_ASCII {

/// Appends the pieces of `text` between the occurrences of `separator`, trimmed, empty ones included, to
/// `pieces`. `text` and `separator` may be elements of `pieces`.
/// Required: with an empty separator it appends empty pieces until memory runs out.
void AppendPieces(const std::string& text, const std::string& separator, std::vector<std::string>& pieces);

/// Splits `source` at its first character that is one of `delimiters` and returns true: `head` is what
/// precedes it, `tail` starts `delimiters.size()` characters after its start. Without such a character it
/// returns false and leaves both unchanged. Throws `std::out_of_range` as `std::string::substr` does when the
/// tail would start after the end of `source`, which takes several delimiters; `head` is then already set.
bool SplitAtFirst(const std::string& source, std::string& head, std::string& tail,
                  const std::string& delimiters);

/// What separates the items of the entry `name`.
const char* ItemSeparator(const std::string& name);

/// Copies the list of `name` to `items` and returns true. Returns false, `items` unchanged, when `map` has no
/// such name or its list is empty.
bool CopyList(const ListMap& map, const std::string& name, std::vector<std::string>& items);

}  // namespace NS_ASCII

#endif  // SRC_INTERFACE_LISTMAP_H_
