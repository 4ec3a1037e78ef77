#ifndef HOST_BASE_TEXT_ESCAPE_H_
#define HOST_BASE_TEXT_ESCAPE_H_

#include <string>
#include <string_view>

#include "framework/visibility.h"

/// Converts bytes that cannot be printed to \xNN, and back. Pure functions; any thread may call them.
namespace host {

/// Replaces every byte outside printable ASCII, and the backslash, by \xNN with lower-case digits.
PLATFORM_API std::string EscapeBytes(std::string_view text);

/// Like `EscapeBytes`, and also escapes a leading and a trailing blank, which would be invisible.
PLATFORM_API std::string EscapeValue(std::string_view text);

/// Replaces every control character by \xNN; all other bytes, the backslash included, are unchanged. For
/// messages of one line.
PLATFORM_API std::string EscapeControls(std::string_view text);

/// Replaces every byte of `special` by \xNN; all other bytes are unchanged.
PLATFORM_API std::string EscapeEach(std::string_view special, std::string_view text);

/// Replaces every \xNN (two hexadecimal digits, either case) by its byte. Any other backslash is unchanged.
PLATFORM_API std::string UnescapeBytes(std::string_view text);

/// Makes `message` one line that is safe to print on a terminal: control characters become \xNN, and the
/// middle of a message over 2,000 bytes becomes "...". Bytes outside ASCII, as in file names, are unchanged.
PLATFORM_API std::string OneLine(std::string_view message);

}  // namespace host

#endif  // HOST_BASE_TEXT_ESCAPE_H_
