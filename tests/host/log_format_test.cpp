// Formats of messages with a variable number of values. A format that is broken must be logged verbatim,
// never read beyond its values.

#include "host/platform/log_format.h"

#include <gtest/gtest.h>

#include <cstdarg>

namespace {

std::string Format(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const std::string text = host::FormatText(format, values);
  va_end(values);
  return text;
}

TEST(LogFormat, FillsInTheUsualConversions) {
  EXPECT_EQ(Format("%s=%d", "a", 7), "a=7");
  EXPECT_EQ(Format("[%-5s|%05d|%+d|%#x|%X|%c]", "ab", 42, 3, 255, 255, 'z'), "[ab   |00042|+3|0xff|FF|z]");
  EXPECT_EQ(Format("%ld %lld %lu %llx", -1L, -2LL, 3UL, 255ULL), "-1 -2 3 ff");
  EXPECT_EQ(Format("%.2f %5.1f", 1.239, 2.0), "1.24   2.0");
  EXPECT_EQ(Format("%.3s", "abcdef"), "abc");
  EXPECT_EQ(Format("%100d%.100d", 1, 1), std::string(99, ' ') + "1" + std::string(99, '0') + "1");
  EXPECT_EQ(Format("100%%"), "100%");
}

TEST(LogFormat, AReversedConversionIsKeptVerbatim) {
  EXPECT_EQ(Format("almconfig.cfg file error. line=s%", "a\tb"), "almconfig.cfg file error. line=s%");
}

TEST(LogFormat, AnythingThatIsNotPlainIsKeptVerbatim) {
  for (const char* format :
       {"%",   "a%",    "%5",  "%-",  "%.", "%l", "%n",  "%ln",       "%*d",    "%.*s",    "%ls",
        "%lf", "%llld", "%hd", "%zu", "%p", "%q", "% d", "100% done", "%1234d", "%.1234d", "%s %"}) {
    EXPECT_EQ(Format(format, "text"), format);
  }
}

TEST(LogFormat, ATextOfAnyLengthFits) {
  const std::string text(100'000, 'x');
  EXPECT_EQ(Format("<%s>", text.c_str()), "<" + text + ">");
}

TEST(LogFormat, NoFormatIsAnEmptyText) { EXPECT_EQ(Format(nullptr), ""); }

}  // namespace
