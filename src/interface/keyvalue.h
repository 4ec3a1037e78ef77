#ifndef SRC_INTERFACE_KEYVALUE_H_
#define SRC_INTERFACE_KEYVALUE_H_

#include <string_view>

namespace NS_ASCII {

/// Whether `text` has characters before its first NUL.
inline bool IsNonEmptyCString(std::string_view text) { return !text.empty() && text.front() != '\0'; }

/// The value of `key` in a text of comma-separated key=value pairs, as a view into `text`; empty when no pair
/// has the key. The first matching pair wins. Pairs are trimmed; keys are compared up to their first NUL.
/// Required: a value that is empty, is only white space or starts with NUL is replaced by the rest of the
/// text after the "=".
/// Pure function; any thread may call it.
std::string_view FindValue(std::string_view key, std::string_view text);

}  // namespace NS_ASCII

#endif  // SRC_INTERFACE_KEYVALUE_H_
