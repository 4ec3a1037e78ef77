#include "host/simple_format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

namespace host {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The most bytes that are used of a buffer, so that every length is an int.
constexpr std::size_t kMostBytes = std::numeric_limits<int>::max();

/// Appends to a buffer what fits, or nothing; the place of the NUL at the end is never taken.
class Output {
 public:
  Output(char* buffer, std::size_t size)
      : start_(buffer), at_(buffer), end_(buffer + std::min(size, kMostBytes) - 1) {}

  bool Add(char c) {
    if (at_ == end_) {
      return false;
    }
    *at_++ = c;
    return true;
  }

  bool Add(const char* text) {
    const std::size_t length = std::strlen(text);
    if (length > Room()) {
      return false;
    }
    std::memcpy(at_, text, length);
    at_ += length;
    return true;
  }

  /// At least `width` characters, led by zeros behind the sign or by blanks before it.
  bool Add(int number, std::size_t width, bool zeros) {
    const bool negative = number < 0;
    unsigned left = negative ? 0U - static_cast<unsigned>(number) : static_cast<unsigned>(number);
    std::size_t length = negative ? 2 : 1;
    for (unsigned more = left; more >= 10; more /= 10) {
      ++length;
    }
    length = std::max(length, width);
    if (length > Room()) {
      return false;
    }
    char* const first = at_;
    at_ += length;
    char* digit = at_;
    do {
      *--digit = static_cast<char>('0' + left % 10);
      left /= 10;
    } while (left != 0);
    std::fill(first, digit, zeros ? '0' : ' ');
    if (negative) {
      (zeros ? *first : *--digit) = '-';
    }
    return true;
  }

  /// Ends the text and gives its length.
  int End() {
    *at_ = '\0';
    return static_cast<int>(at_ - start_);
  }

 private:
  std::size_t Room() const { return static_cast<std::size_t>(end_ - at_); }

  char* const start_;
  char* at_;
  char* const end_;
};

}  // namespace

int SimpleFormat(char* buffer, std::size_t size, const char* format, std::va_list values) {
  Output output(buffer, size);
  bool added = true;
  while (added && *format != '\0') {
    if (*format != '%') {
      added = output.Add(*format++);
      continue;
    }
    ++format;
    if (*format == '%') {
      added = output.Add('%');
    } else if (*format == 's') {
      const char* const text = va_arg(values, const char*);
      added = text != nullptr && output.Add(text);
    } else {
      const bool zeros = *format == '0';
      format += zeros ? 1 : 0;
      std::size_t width = 0;
      for (const char* const start = format; IsDigit(*format) && format < start + 2; ++format) {
        width = width * 10 + static_cast<std::size_t>(*format - '0');
      }
      added = *format == 'd' && output.Add(va_arg(values, int), width, zeros);
    }
    ++format;
  }
  return added ? output.End() : -1;
}

int FastFormat(char* buffer, std::size_t size, const char* format, std::va_list values) {
  std::va_list again;
  va_copy(again, values);
  const int length = SimpleFormat(buffer, size, format, again);
  va_end(again);
  return length >= 0 ? length : std::vsnprintf(buffer, size, format, values);
}

}  // namespace host
