// Trimming and case conversion. No function keeps state; the case functions use the calling thread's locale.
// Any thread may call them.

#include "src/text/strfunctions.h"

#include <ctype.h>

#include <locale.h>

#include <algorithm>

namespace NS_ASCII {
namespace {

/// The "C" locale that is built into the C library. Most services never set another. Its tables are never
/// freed, so their addresses identify it.
const __locale_struct& BuiltInLocale() {
  static const locale_t builtIn = newlocale(LC_ALL_MASK, "C", nullptr);
  return *builtIn;
}

/// Case mapping in the built-in locale: changes the case of the letters from `firstLetter` to `firstLetter` +
/// 25. Several times faster than a table, since compilers vectorise the loop.
void FlipLetters(std::string& text, char firstLetter) {
  for (char& c : text) {
    c = static_cast<char>(c ^ (static_cast<unsigned char>(c - firstLetter) < 26 ? 0x20 : 0));
  }
}

}  // namespace

std::string TrimLeft(const std::string& text) { return std::string(TrimLeftView(text)); }

std::string TrimRight(const std::string& text) { return std::string(TrimRightView(text)); }

std::string Trim(const std::string& text) { return std::string(TrimView(text)); }

std::string StrToUpper(std::string text) {
  if (*__ctype_toupper_loc() == BuiltInLocale().__ctype_toupper) {
    FlipLetters(text, 'a');
  } else {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return toupper(c); });
  }
  return text;
}

std::string StrToLower(std::string text) {
  if (*__ctype_tolower_loc() == BuiltInLocale().__ctype_tolower) {
    FlipLetters(text, 'A');
  } else {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return tolower(c); });
  }
  return text;
}

void MakeUpperSigned(std::string& text) {
  if (*__ctype_toupper_loc() == BuiltInLocale().__ctype_toupper &&
      *__ctype_b_loc() == BuiltInLocale().__ctype_b) {
    FlipLetters(text, 'a');
    return;
  }
  for (char& c : text) {
    const int code = static_cast<signed char>(c);  // NOLINT(bugprone-signed-char-misuse,cert-str34-c)
    if (islower(code) != 0) {
      c = static_cast<char>(toupper(code));
    }
  }
}

std::string Num2Str(int number) { return std::to_string(number); }

}  // namespace NS_ASCII
