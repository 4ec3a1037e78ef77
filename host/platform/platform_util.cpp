// The platform's text utilities: Num2Str, Trim and sprintf_s. Pure functions; any thread may call them.

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iterator>

#include "framework/platform_util.h"

namespace NSTE_util {

std::string Trim(const std::string& text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; };
  const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
  const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isBlank);
  return {first, last.base()};
}

std::string Num2Str(int number) { return std::to_string(number); }

}  // namespace NSTE_util

// Required: negative, with an empty buffer, when the text does not fit. GetTimeStamp depends on it.
extern "C" int sprintf_s(char* buffer, std::size_t size, const char* format, ...) {
  if (buffer == nullptr || size == 0 || format == nullptr) {
    return -1;
  }
  std::va_list values;
  va_start(values, format);
  // clang-tidy 14 does not see that va_start initialised `values`.
  const int length =
      std::vsnprintf(buffer, size, format, values);  // NOLINT(clang-analyzer-valist.Uninitialized)
  va_end(values);
  if (length < 0 || static_cast<std::size_t>(length) >= size) {
    buffer[0] = '\0';
    return -1;
  }
  return length;
}
