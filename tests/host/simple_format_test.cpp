#include "host/simple_format.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "framework/platform_util.h"
#include "tests/random_text.h"

namespace {

using testing_text::ForEachText;
using testing_text::RandomText;
using testing_text::Trials;

/// What SimpleFormat writes into `size` bytes; nothing when it leaves the format to others.
std::optional<std::string> Simple(std::size_t size, const char* format, ...) {
  const auto buffer = std::make_unique<char[]>(size);  // A size of its own, so that a byte too many is found.
  std::va_list values;
  va_start(values, format);
  const int length = host::SimpleFormat(buffer.get(), size, format, values);
  va_end(values);
  if (length < 0) {
    return std::nullopt;
  }
  EXPECT_EQ(buffer[static_cast<std::size_t>(length)], '\0');
  return std::string(buffer.get(), static_cast<std::size_t>(length));
}

/// What vsnprintf writes, however long it is; nothing when it fails.
std::optional<std::string> Printf(const char* format, ...) {
  char buffer[1000];
  std::va_list values;
  va_start(values, format);
  const int length = std::vsnprintf(buffer, sizeof buffer, format, values);
  va_end(values);
  if (length < 0) {
    return std::nullopt;
  }
  return std::string(buffer, static_cast<std::size_t>(length));
}

constexpr int kNumbers[] = {0,          1,           -1,      9,       -9,         10,
                            -10,        99,          100,     -100,    999,        1000,
                            9999,       12345,       -123456, 1234567, 9999999,    999999999,
                            1000000000, INT_MAX - 1, INT_MAX, INT_MIN, INT_MIN + 1};

TEST(SimpleFormat, WritesATimeStamp) {
  EXPECT_EQ(Simple(20, "%4d-%02d-%02d%s%02d:%02d:%02d", 2026, 11, 5, "T", 9, 0, 44), "2026-11-05T09:00:44");
  EXPECT_EQ(Simple(20, "%4d-%02d-%02d%s%02d:%02d:%02d", 999, 1, 31, "T", 23, 59, 59), " 999-01-31T23:59:59");
}

TEST(SimpleFormat, WritesTextAndPercentSigns) {
  EXPECT_EQ(Simple(1, ""), "");
  EXPECT_EQ(Simple(20, "100%%, \xC3\xA9\n"), "100%, \xC3\xA9\n");
  EXPECT_EQ(Simple(20, "<%s|%s>", "", "two"), "<|two>");
}

TEST(SimpleFormat, WritesEveryNumberInEveryWidthAsPrintfDoes) {
  for (const int number : kNumbers) {
    for (int width = 0; width < 100; ++width) {
      for (const std::string& start : {std::string("%"), std::string("%0")}) {
        const std::string format = start + (width == 0 ? "" : std::to_string(width)) + 'd';
        EXPECT_EQ(Simple(200, format.c_str(), number), Printf(format.c_str(), number)) << format << number;
      }
    }
  }
}

TEST(SimpleFormat, WhatFitsExactlyIsWrittenAndOneByteLessIsNot) {
  EXPECT_EQ(Simple(4, "abc"), "abc");
  EXPECT_EQ(Simple(3, "abc"), std::nullopt);
  EXPECT_EQ(Simple(3, "a%%"), "a%");
  EXPECT_EQ(Simple(2, "a%%"), std::nullopt);
  EXPECT_EQ(Simple(4, "%s", "abc"), "abc");
  EXPECT_EQ(Simple(3, "%s", "abc"), std::nullopt);
  EXPECT_EQ(Simple(12, "%d", INT_MIN), "-2147483648");
  EXPECT_EQ(Simple(11, "%d", INT_MIN), std::nullopt);
  EXPECT_EQ(Simple(6, "%5d", 7), "    7");
  EXPECT_EQ(Simple(5, "%5d", 7), std::nullopt);
}

TEST(SimpleFormat, ABufferMayBeSaidToBeLargerThanAnyTextIs) {
  char buffer[8];
  EXPECT_EQ(sprintf_s(buffer, SIZE_MAX, "%d", 1234567), 7);
  EXPECT_STREQ(buffer, "1234567");
}

TEST(SimpleFormat, LeavesTheRestToOthers) {
  for (const char* const format :
       {"%",   "a%",  "%5",  "%0", "%-5d", "%+d", "% d",  "%123d", "%0123d", "%.3d",
        "%ld", "%5%", "%0%", "%u", "%x",   "%*d", "%hhd", "%i",    "%'d",    "%1$d"}) {
    EXPECT_EQ(Simple(200, format, 1, 2), std::nullopt) << format;
  }
  for (const char* const format : {"%5s", "%05s", "%.2s", "%-5s", "%ls", "%p"}) {
    EXPECT_EQ(Simple(200, format, "text"), std::nullopt) << format;
  }
  EXPECT_EQ(Simple(200, "%s", static_cast<const char*>(nullptr)), std::nullopt);
}

TEST(SimpleFormat, NeverDiffersFromPrintfWhateverTheFormatOfNumbers) {
  int simple = 0;
  ForEachText("%d0279-a", 6, [&](const std::string& format) {
    const std::optional<std::string> text = Simple(200, format.c_str(), 5, -678, 90);
    if (text.has_value()) {
      ++simple;
      ASSERT_EQ(text, Printf(format.c_str(), 5, -678, 90)) << format;
    }
  });
  EXPECT_GT(simple, 10'000);
}

TEST(SimpleFormat, NumbersAndTextsInAnyBufferAreThoseOfPrintf) {
  RandomText random(20261121);
  const auto number = [&] { return kNumbers[random.Below(std::size(kNumbers))]; };
  const auto conversion = [&] {
    return '%' + std::string(random.Below(2), '0') + random.Of("123456789", 1) + random.Of("0123456789", 1) +
           'd';
  };
  for (int trial = 0; trial < Trials(20'000); ++trial) {
    const std::string format = random.Of("a b:", 3) + "%%" + conversion() + random.Of("x-", 3) + "%s" +
                               conversion() + "%s" + random.Of("T", 2);
    const std::string text = random.Of("text", 30);
    const int one = number();
    const int two = number();
    const auto whole = Printf(format.c_str(), one, text.c_str(), two, text.c_str()).value();
    const std::size_t size = random.Below(250) + 1;
    const auto written = Simple(size, format.c_str(), one, text.c_str(), two, text.c_str());
    ASSERT_EQ(written, whole.size() < size ? std::optional(whole) : std::nullopt) << format;
  }
}

}  // namespace
