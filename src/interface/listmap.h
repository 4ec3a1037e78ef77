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

}  // namespace NS_ASCII

#endif  // SRC_INTERFACE_LISTMAP_H_
