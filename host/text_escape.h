#ifndef HOST_TEXT_ESCAPE_H_
#define HOST_TEXT_ESCAPE_H_

#include <string>
#include <string_view>

#include "framework/visibility.h"

/// How byte strings are shown and typed: printable ASCII as it is, every other byte as \xNN.
/// Pure functions.
namespace host {

/// `text` with every byte outside printable ASCII, and the backslash, as \xNN in lower-case digits.
PLATFORM_API std::string EscapeBytes(std::string_view text);

/// The same for a value on a line of its own: a blank at either end is escaped too, so that it is seen.
PLATFORM_API std::string EscapeValue(std::string_view text);

/// `text` with every control character as \xNN; everything else, the backslash too, stays. For messages of
/// one line.
PLATFORM_API std::string EscapeControls(std::string_view text);

/// `text` with every \xNN (two hexadecimal digits, either case) as its byte. A backslash without them is a
/// plain backslash.
PLATFORM_API std::string UnescapeBytes(std::string_view text);

/// A message as one line of bounded length that no terminal takes for orders: control characters as \xNN,
/// the middle of one that is very long as "...". Bytes outside ASCII stay, since file names hold them.
PLATFORM_API std::string OneLine(std::string_view message);

}  // namespace host

#endif  // HOST_TEXT_ESCAPE_H_
