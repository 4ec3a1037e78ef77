#ifndef ASCII_UTIL_TEXT_FUNCTIONS_H_
#define ASCII_UTIL_TEXT_FUNCTIONS_H_

#include <string>

#include "framework/visibility.h"

/// Text functions that other libraries link against.
///
/// Texts are byte strings, embedded NULs included. The signatures are part of the binary contract: `Trim`
/// takes its text by reference, the other functions by value. "Required" marks behaviour that existing
/// callers depend on, even if it looks like a mistake.
/// Threads: any; no function keeps state. The case functions use the calling thread's locale.
/// Errors: none on bad input. Exhausted memory throws `std::bad_alloc`; exceptions of the platform's
/// converter reach the caller.
namespace NS_ASCII {

/// A copy of `text` without leading and trailing blank, tab, line feed and carriage return. Vertical tab
/// and form feed are not removed.
[[nodiscard]] PLATFORM_API std::string Trim(const std::string& text);

/// `text` with every byte mapped by the C library's `toupper`, as an `unsigned char`.
[[nodiscard]] PLATFORM_API std::string StrToUpper(std::string text);

/// `text` with every byte mapped by the C library's `tolower`, as an `unsigned char`.
[[nodiscard]] PLATFORM_API std::string StrToLower(std::string text);

/// The decimal text of `number`: no padding, no plus sign, no grouping.
[[nodiscard]] PLATFORM_API std::string Num2Str(int number);

/// Converts `text` from UTF-8 to ISO-8859-1 with the platform's converter and returns its output, also when
/// the converter reports a failure. How characters outside ISO-8859-1 and malformed bytes are converted is up
/// to the platform.
[[nodiscard]] PLATFORM_API std::string utf8toiso8859(std::string text);

/// Converts `text` to ISO-8859-1 and percent-encodes it in the manner of web forms.
///
/// Letters, digits and `-._*` stay, a blank becomes '+', every other byte becomes '%' and its value in
/// lower-case hexadecimal **without a leading zero** ("%9" for tab). Differs from RFC 3986 and from HTML
/// forms in that, and in the encoding of line ends: CR LF gives "%0d%0a", and so does an LF before an escaped
/// byte or at the end; an LF before any other byte gives "%a", a lone CR "%d". Required: a CR before a byte
/// 0xA0 to 0xAF is encoded like one before LF ("%0d%0a9" for CR, 0xA9).
[[nodiscard]] PLATFORM_API std::string GetURLEncoding(std::string text);

/// Decodes '+' to a blank and percent escapes to bytes; converts no code set.
///
/// The two characters after a '%', or fewer if another '%' or the end of the text comes first, are consumed
/// and read as C++ streams read a hexadecimal integer: a sign, white space and "0x" are accepted, one digit is
/// enough, no digit gives NUL ("%zz"). An escape that is empty or white space repeats the byte of the previous
/// escape, or gives NUL if there is none; a '%' at the very end is dropped.
/// So this is not the inverse of `GetURLEncoding`: "a%ab" is 'a' and the byte 0xAB.
[[nodiscard]] PLATFORM_API std::string GetURLDecoding(std::string text);

/// `text` with every '%' written as "%25" and nothing else changed. Decodes nothing, despite its name.
[[nodiscard]] PLATFORM_API std::string SetURLDecoding(std::string text);

}  // namespace NS_ASCII

#endif  // ASCII_UTIL_TEXT_FUNCTIONS_H_
