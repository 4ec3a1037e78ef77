#ifndef SRC_INTERFACE_LISTMAP_H_
#define SRC_INTERFACE_LISTMAP_H_

#include <string>
#include <vector>

/// Splits texts into the items of lists and the entries of a `ListMap`. Functions without state: any thread
/// may call them; texts and lists belong to the caller.
namespace NS_ASCII {

/// Appends the pieces of `text` between the occurrences of `separator`, trimmed, empty ones included, to
/// `pieces`. `text` and `separator` may be elements of `pieces`.
/// Required: with an empty separator it appends empty pieces until memory runs out.
void AppendPieces(const std::string& text, const std::string& separator, std::vector<std::string>& pieces);

/// Splits `source` at its first character that is one of `delimiters` and returns true: `head` is what
/// precedes it. Required: `tail` is what remains after skipping `delimiters.size()` characters from that
/// character on, although only one of the delimiters matched. With several delimiters this may skip more than
/// `source` has; then `std::out_of_range` is thrown and `head` is already set. Without such a character the
/// result is false and both are unchanged.
bool SplitAtFirst(const std::string& source, std::string& head, std::string& tail,
                  const std::string& delimiters);

}  // namespace NS_ASCII

#endif  // SRC_INTERFACE_LISTMAP_H_
