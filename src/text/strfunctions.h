#ifndef SRC_TEXT_STRFUNCTIONS_H_
#define SRC_TEXT_STRFUNCTIONS_H_

#include <string>
#include <string_view>

#include "ascii_util/text_functions.h"

/// Text functions that several units use. Any thread may call them; only `MakeUpperSigned` uses the locale.
namespace NS_ASCII {

/// Whether `c` is white space, which trimming removes: blank, tab, line feed or carriage return.
constexpr bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// A copy of `text` without its leading white space.
std::string TrimLeft(const std::string& text);

/// A copy of `text` without its trailing white space.
std::string TrimRight(const std::string& text);

/// A view into `text` without its leading white space.
inline std::string_view TrimLeftView(std::string_view text) {
  while (!text.empty() && IsWhiteSpace(text.front())) {
    text.remove_prefix(1);
  }
  return text;
}

/// A view into `text` without its trailing white space.
inline std::string_view TrimRightView(std::string_view text) {
  while (!text.empty() && IsWhiteSpace(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

/// A view into `text` without its leading and trailing white space.
inline std::string_view TrimView(std::string_view text) { return TrimRightView(TrimLeftView(text)); }

/// Changes `text` to upper case, each byte passed to the C library as a signed value. `StrToUpper` passes
/// unsigned ones; in a few locales the two differ for byte 0xFF.
void MakeUpperSigned(std::string& text);

}  // namespace NS_ASCII

#endif  // SRC_TEXT_STRFUNCTIONS_H_
