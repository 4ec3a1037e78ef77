// Checks and fills in printf formats. No state, the results are copies; any thread may call.

#include "host/platform/log_format.h"

#include <cstdio>
#include <cstring>

namespace host {
namespace {

const char* SkipAll(const char* text, const char* of) { return text + std::strspn(text, of); }

/// Skips at most three digits; null when there are more.
const char* SkipNumber(const char* text) {
  const char* const end = SkipAll(text, "0123456789");
  return end - text > 3 ? nullptr : end;
}

/// Skips the conversion whose '%' precedes `text`; null when it is not a plain one.
const char* SkipConversion(const char* text) {
  if (*text == '%') {
    return text + 1;
  }
  text = SkipNumber(SkipAll(text, "-+0#"));
  if (text != nullptr && *text == '.') {
    text = SkipNumber(text + 1);
  }
  if (text == nullptr) {
    return nullptr;
  }
  const char* const conversion = SkipAll(text, "l");
  const char* const allowed = conversion == text ? "diuxXcsf" : "diuxX";
  if (conversion - text > 2 || *conversion == '\0' || std::strchr(allowed, *conversion) == nullptr) {
    return nullptr;
  }
  return conversion + 1;
}

}  // namespace

bool IsPlainFormat(const char* format) {
  while (format != nullptr && *format != '\0') {
    format = *format == '%' ? SkipConversion(format + 1) : format + 1;
  }
  return format != nullptr;
}

std::string FormatText(const char* format, std::va_list values) {
  if (format == nullptr) {
    return {};
  }
  if (!IsPlainFormat(format)) {
    return format;
  }
  std::va_list again;
  va_copy(again, values);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  if (length < 0) {
    return format;
  }
  std::string text(static_cast<std::size_t>(length), '\0');
  static_cast<void>(std::vsnprintf(text.data(), text.size() + 1, format, values));
  return text;
}

}  // namespace host
