#include "src/strfunctions.h"

#include <array>
#include <cctype>
#include <charconv>
#include <functional>

namespace NS_ASCII {
namespace {

std::string_view WithoutLeading(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::string_view WithoutTrailing(std::string_view text) {
  // An all-blank text gives npos, and npos + 1 is the length that is left: none.
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

}  // namespace

std::string_view TrimView(std::string_view text) { return WithoutTrailing(WithoutLeading(text)); }

bool IsElementOf(const std::string& text, const std::vector<std::string>& list) {
  // Pointers into different objects are only ordered by std::less.
  const std::less<const std::string*> less;
  return !list.empty() && !less(&text, &list.front()) && !less(&list.back(), &text);
}

std::string TrimLeft(const std::string& text) { return std::string(WithoutLeading(text)); }

std::string TrimRight(const std::string& text) { return std::string(WithoutTrailing(text)); }

std::string Trim(const std::string& text) { return std::string(TrimView(text)); }

std::string StrToUpper(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return text;
}

std::string StrToLower(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return text;
}

std::string Num2Str(int number) {
  std::array<char, 16> digits;  // The longest text, that of the smallest int, has 11 characters.
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return std::string(digits.data(), end);
}

}  // namespace NS_ASCII
