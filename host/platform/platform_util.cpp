// The platform's text utilities: Num2Str, Trim and sprintf_s. Pure functions; any thread may call them.

#include <cstdarg>
#include <cstdio>

#include "framework/platform_util.h"

namespace NSTE_util {

std::string Trim(const std::string& text) {
  constexpr const char* kWhiteSpace = " \t\n\r";
  const auto first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
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
  const int length = std::vsnprintf(buffer, size, format, values);
  va_end(values);
  if (length < 0 || static_cast<std::size_t>(length) >= size) {
    buffer[0] = '\0';
    return -1;
  }
  return length;
}
