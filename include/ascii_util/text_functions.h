#ifndef ASCII_UTIL_TEXT_FUNCTIONS_H_
#define ASCII_UTIL_TEXT_FUNCTIONS_H_

#include <string>

#include "framework/visibility.h"

/// Text functions that other libraries link against.
///
/// Texts are byte strings, embedded NULs included. The signatures are part of the binary contract, also
/// where one takes its text by value and another by reference.
/// Threads: none keeps state; any thread may call any of them. The case functions read the locale that is
/// in force for the calling thread.
/// Errors: none on bad input. Exhausted memory throws `std::bad_alloc`; what the platform's converter throws
/// reaches the caller.
namespace NS_ASCII {

/// A copy of `text` without leading and trailing blank, tab, line feed and carriage return. Vertical tab
/// and form feed are no white space here: a line that ends in a form feed keeps it.
[[nodiscard]] PLATFORM_API std::string Trim(const std::string& text);

/// `text` with every byte passed through the C library's `toupper`, as an unsigned value.
[[nodiscard]] PLATFORM_API std::string StrToUpper(std::string text);

/// `text` with every byte passed through the C library's `tolower`, as an unsigned value.
[[nodiscard]] PLATFORM_API std::string StrToLower(std::string text);

/// The decimal text of `number`: no padding, no plus sign, no grouping.
[[nodiscard]] PLATFORM_API std::string Num2Str(int number);

/// Converts `text` from UTF-8 to ISO-8859-1 with the platform's converter and returns what that leaves,
/// whatever it reports: characters outside ISO-8859-1 and malformed bytes are its business.
[[nodiscard]] PLATFORM_API std::string utf8toiso8859(std::string text);

/// Converts `text` to ISO-8859-1 and percent-encodes it in the manner of web forms.
///
/// Letters, digits and `-._*` stay, a space becomes '+', every other byte becomes '%' and its value in
/// lower-case hexadecimal **without a leading zero** ("%9" for tab). Differs from RFC 3986 and from HTML
/// forms in that, and in how line ends come out: CR LF gives "%0d%0a", and so does a LF before another
/// escape or at the end; a LF before a plain character stays "%a", a lone CR "%d". A CR before a byte 0xA0 to
/// 0xAF is taken for the same thing ("%0d%0a9" for CR, 0xA9). Decoders depend on all of it.
[[nodiscard]] PLATFORM_API std::string GetURLEncoding(std::string text);

/// Decodes '+' to space and percent escapes to bytes; converts no code set.
///
/// The two characters after a '%', or the one before the next '%', are consumed, whatever they are, and read
/// as C++ streams read a hexadecimal integer: a sign, white space and "0x" are accepted, one digit is enough,
/// no digit gives NUL ("%zz"). An empty or blank escape repeats the byte of the escape before it, NUL at
/// first; a '%' at the very end is dropped.
/// So this is not the inverse of `GetURLEncoding`: "a%ab" is 'a' and the byte 0xAB.
[[nodiscard]] PLATFORM_API std::string GetURLDecoding(std::string text);

/// `text` with every '%' written as "%25" and nothing else changed. Decodes nothing, despite its name.
[[nodiscard]] PLATFORM_API std::string SetURLDecoding(std::string text);

}  // namespace NS_ASCII

#endif  // ASCII_UTIL_TEXT_FUNCTIONS_H_
