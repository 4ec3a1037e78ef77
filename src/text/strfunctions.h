#ifndef SRC_STRFUNCTIONS_H_
#define SRC_STRFUNCTIONS_H_

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "ascii_util/text_functions.h"

/// The trimming rule of the whole library, in the forms that its units use, and what else they share about
/// texts. Pure functions.
namespace NS_ASCII {

/// What is trimmed: blank, tab, line feed, carriage return, and nothing else.
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// A copy of `text` without its leading blanks.
std::string TrimLeft(const std::string& text);

/// A copy of `text` without its trailing blanks.
std::string TrimRight(const std::string& text);

/// Whether `text` is itself one of the strings of `list`, so that appending to the list may move it away.
bool IsElementOf(const std::string& text, const std::vector<std::string>& list);

/// The part of `text` that `TrimLeft` would copy. It looks into `text` and lives no longer. This and the next
/// two are for texts that have few blanks, as most have.
inline std::string_view TrimLeftView(std::string_view text) {
  const char* const first = std::find_if_not(text.begin(), text.end(), IsBlank);
  return {first, static_cast<std::size_t>(text.end() - first)};
}

/// The same for `TrimRight`.
inline std::string_view TrimRightView(std::string_view text) {
  while (!text.empty() && IsBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

/// The same for `Trim`.
inline std::string_view TrimView(std::string_view text) { return TrimRightView(TrimLeftView(text)); }

/// How many characters of `text` are `wanted`.
std::size_t CountOf(char wanted, std::string_view text);

}  // namespace NS_ASCII

#endif  // SRC_STRFUNCTIONS_H_
