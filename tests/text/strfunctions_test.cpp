// The exported text functions in the "C" locale. Exactly four bytes count as white space, fewer than in
// the C library.

#include "src/text/strfunctions.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using NS_ASCII::Num2Str;
using NS_ASCII::StrToLower;
using NS_ASCII::StrToUpper;
using NS_ASCII::Trim;
using NS_ASCII::TrimLeft;
using NS_ASCII::TrimRight;
using NS_ASCII::TrimView;

TEST(Trim, OfNothingOrOnlyBlanksIsEmpty) {
  EXPECT_EQ(Trim(""), "");
  EXPECT_EQ(Trim(" "), "");
  EXPECT_EQ(Trim(" \t\r\n"), "");
  EXPECT_EQ(Trim("\n\r\t "), "");
  EXPECT_EQ(Trim("\r\r\n \t\t"), "");
}

TEST(Trim, RemovesBlanksAtBothEndsAndLeavesThoseInside) {
  EXPECT_EQ(Trim("\tab c\r\n"), "ab c");
  EXPECT_EQ(Trim("x"), "x");
  EXPECT_EQ(Trim("  a \t\r\n b  "), "a \t\r\n b");
}

// Required: a line that ends in a form feed keeps it.
TEST(Trim, LeavesVerticalTabAndFormFeed) {
  EXPECT_EQ(Trim("\vabc\f"), "\vabc\f");
  EXPECT_EQ(Trim(" \vabc\f "), "\vabc\f");
}

TEST(Trim, TreatsExactlyFourOfAllBytesAsBlank) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    const bool blank = byte == 0x20 || byte == 0x09 || byte == 0x0A || byte == 0x0D;
    EXPECT_EQ(Trim(one), blank ? "" : one) << byte;
    EXPECT_EQ(Trim(one + "x" + one), blank ? "x" : one + "x" + one) << byte;
  }
}

TEST(TrimLeft, RemovesLeadingBlanksOnly) {
  EXPECT_EQ(TrimLeft("  a "), "a ");
  EXPECT_EQ(TrimLeft(""), "");
  EXPECT_EQ(TrimLeft(" \t\n\r"), "");
  EXPECT_EQ(TrimLeft("a"), "a");
}

TEST(TrimRight, RemovesTrailingBlanksOnly) {
  EXPECT_EQ(TrimRight("  a "), "  a");
  EXPECT_EQ(TrimRight(""), "");
  EXPECT_EQ(TrimRight(" \t\n\r"), "");
  EXPECT_EQ(TrimRight("a"), "a");
}

void ExpectTrimmedAsByTheLiteralRule(const std::string& text) {
  ASSERT_EQ(Trim(text), literal::Trim(text)) << ::testing::PrintToString(text);
  ASSERT_EQ(TrimView(text), literal::Trim(text)) << ::testing::PrintToString(text);
  ASSERT_EQ(TrimLeft(text), literal::TrimLeft(text)) << ::testing::PrintToString(text);
  ASSERT_EQ(TrimRight(text), literal::TrimRight(text)) << ::testing::PrintToString(text);
}

TEST(Trim, AgreesWithTheLiteralRuleInAllItsForms) {
  testing_text::ForEachText({" \t\n\r\v\0a\xA0", 8}, 5,
                            [](const std::string& text) { ExpectTrimmedAsByTheLiteralRule(text); });
}

TEST(StrToUpper, RaisesLettersAndNothingElse) {
  EXPECT_EQ(StrToUpper("abc-xyz 09"), "ABC-XYZ 09");
  EXPECT_EQ(StrToUpper(""), "");
  EXPECT_EQ(StrToUpper("\xC3\xA9"), "\xC3\xA9");  // Small e with acute accent in UTF-8.
  EXPECT_EQ(StrToUpper(std::string("a\0b", 3)), std::string("A\0B", 3));
}

TEST(StrToLower, LowersLettersAndNothingElse) {
  EXPECT_EQ(StrToLower("MiXeD"), "mixed");
  EXPECT_EQ(StrToLower(""), "");
  EXPECT_EQ(StrToLower("\xC3\x89"), "\xC3\x89");
  EXPECT_EQ(StrToLower(std::string("A\0B", 3)), std::string("a\0b", 3));
}

TEST(StrToUpper, MapsOnlyATozOfAllBytesInTheCLocale) {
  for (int byte = 0; byte < 256; ++byte) {
    const int expected = byte >= 'a' && byte <= 'z' ? byte - 0x20 : byte;
    EXPECT_EQ(StrToUpper(std::string(1, static_cast<char>(byte))),
              std::string(1, static_cast<char>(expected)));
  }
}

TEST(StrToLower, MapsOnlyAToZOfAllBytesInTheCLocale) {
  for (int byte = 0; byte < 256; ++byte) {
    const int expected = byte >= 'A' && byte <= 'Z' ? byte + 0x20 : byte;
    EXPECT_EQ(StrToLower(std::string(1, static_cast<char>(byte))),
              std::string(1, static_cast<char>(expected)));
  }
}

TEST(StrToUpper, LeavesTheCallersTextAlone) {
  const std::string text = "abc";
  EXPECT_EQ(StrToUpper(text), "ABC");
  EXPECT_EQ(text, "abc");
}

TEST(Num2Str, WritesPlainDecimals) {
  EXPECT_EQ(Num2Str(0), "0");
  EXPECT_EQ(Num2Str(-5), "-5");
  EXPECT_EQ(Num2Str(2147483647), "2147483647");
  EXPECT_EQ(Num2Str(INT_MIN), "-2147483648");
}

TEST(Num2Str, AgreesWithTheLiteralRule) {
  testing_text::RandomText random(41);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const auto bits = static_cast<unsigned>(random.Below(std::size_t{1} << 32)) >> random.Below(32);
    const int number = static_cast<int>(bits);
    ASSERT_EQ(Num2Str(number), literal::Num2Str(number));
    ASSERT_EQ(Num2Str(number), std::to_string(number));
  }
}

}  // namespace
